// DateTimeValueTest.cpp - calendar, zones, arithmetic, order and payload of the date-time value
//
// The calendar is checked against value/data/calendar.tsv and isoweeks.tsv
// (dates computed outside the tests). Everything that depends on the machine's zone runs in a child
// process with its own TZ; this process itself runs in UTC.
#include <gtest/gtest.h>
#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <tuple>
#include <vector>

#include "support/DataRows.h"
#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

// The machine zone of this test program is UTC, whatever the host's.
[[maybe_unused]] bool const inUtc = (setenv("TZ", "UTC", 1), tzset(), true);

using DT = DateTimeValue;

DT made(int y, int mo, int d, int h = 12, int mi = 0, int s = 0, int ms = 0) {
  DT v;
  v.set(y, mo, d, h, mi, s, ms);
  return v;
}

// Reference tables from value/data: the calendar (julian day, year, month,
// day), ISO weeks (year, month, day, week-year, week) and the zone table.
struct CalendarRow {
  int jd, year, month, day;
};
struct IsoWeekRow {
  int year, month, day, weekYear, week;
};
struct ZoneRow {
  std::string name;
  int toStandard, toDaylight, rule, hhmm;
};
template <class Row, std::size_t N>
std::vector<Row> intRows(char const *file) {
  std::vector<Row> out;
  for (auto const &f : readRows(file, N)) {
    int v[N];
    for (std::size_t i = 0; i < N; ++i) v[i] = std::stoi(f[i]);
    out.push_back(std::apply([](auto... x) { return Row{x...}; }, std::to_array(v)));
  }
  return out;
}
std::vector<CalendarRow> const kCalendarRows = intRows<CalendarRow, 4>("value/data/calendar.tsv");
std::vector<IsoWeekRow> const kIsoWeekRows = intRows<IsoWeekRow, 5>("value/data/isoweeks.tsv");
std::vector<ZoneRow> const kZones = [] {
  std::vector<ZoneRow> out;
  for (auto const &f : readRows("value/data/zones.tsv", 5))
    out.push_back({f[0], std::stoi(f[1]), std::stoi(f[2]), std::stoi(f[3]), std::stoi(f[4])});
  return out;
}();

TEST(DateTimeZoneTableTest, EveryRowHasItsNameStepsRuleAndOffset) {
  ASSERT_EQ(kZones.size(), static_cast<std::size_t>(DT::kTimeZoneCount));
  ASSERT_EQ(kCalendarRows.size(), 6203u);
  ASSERT_EQ(kIsoWeekRows.size(), 398u);
  for (int row = 0; row < DT::kTimeZoneCount; ++row) {
    auto const &r = DT::getTimeZoneRow(row);
    auto const &e = kZones[row];
    EXPECT_STREQ(r.name, e.name.c_str()) << row;
    EXPECT_EQ(r.toStandard, e.toStandard) << row;
    EXPECT_EQ(r.toDaylight, e.toDaylight) << row;
    EXPECT_EQ(r.rule, e.rule) << row;
    EXPECT_EQ(r.hhmm, e.hhmm) << row;
    // The day offset is the offset's magnitude.
    EXPECT_DOUBLE_EQ(r.dayOffset * 24, std::abs(e.hhmm / 100) + std::abs(e.hhmm % 100) / 60.0) << row;
    if (e.toDaylight) {
      EXPECT_EQ(kZones[row + e.toDaylight].toStandard, -e.toDaylight) << row;
    }
  }
  EXPECT_QUARN_THROW_AS(DT::getTimeZoneRow(217), InvalidIndexException, "Invalid index 217 (last valid index 216)");
}

TEST(DateTimeZoneTableTest, SearchByNameIgnoresCaseAndTheFirstOfTwinNamesWins) {
  struct Case {
    char16_t const *name;
    int row;
  } const cases[] = {{u"BT", 2},   {u"HST", 4},  {u"nst", 20}, {u"BST", 22}, {u"gst", 23}, {u"Utc", 28},
                     {u"eastern standard time", 79}, {u"Universal Coordinated Time", 92}, {u"UTCX", -1}, {u"", -1}};
  for (auto const &c : cases) EXPECT_EQ(DT::findTimeZone(u16(c.name).getBuffer()), c.row) << utf8(u16(c.name));
}

// ---- julian <-> calendar

TEST(DateTimeCalendarTest, JulianToTMGivesTheReferenceDateOfEveryRow) {
  for (auto const &r : kCalendarRows) {
    struct tm fields {};
    int ms;
    DT::julianToTM(r.jd, fields, ms);
    ASSERT_EQ(fields.tm_year + 1900, r.year) << r.jd;
    ASSERT_EQ(fields.tm_mon + 1, r.month) << r.jd;
    ASSERT_EQ(fields.tm_mday, r.day) << r.jd;
    ASSERT_EQ(fields.tm_hour, 12) << r.jd;
    ASSERT_EQ(ms, 0);
  }
}

TEST(DateTimeCalendarTest, ConsecutiveDayNumbersGiveConsecutiveDatesFromJd0To9999) {
  struct tm prev {};
  int ms;
  DT::julianToTM(0, prev, ms);
  ASSERT_EQ(prev.tm_year + 1900, -4713);
  long long const last = 5373484;  // 31 December 9999
  for (long long jd = 1; jd <= last; ++jd) {
    struct tm cur {};
    DT::julianToTM(static_cast<double>(jd), cur, ms);
    bool const sameMonth = cur.tm_year == prev.tm_year && cur.tm_mon == prev.tm_mon && cur.tm_mday == prev.tm_mday + 1;
    bool const nextMonth = cur.tm_mday == 1 && ((cur.tm_year == prev.tm_year && cur.tm_mon == prev.tm_mon + 1) ||
                                                (cur.tm_mon == 0 && prev.tm_mon == 11 && prev.tm_mday == 31 &&
                                                 (cur.tm_year == prev.tm_year + 1 || (prev.tm_year == -1901 && cur.tm_year == -1899))));
    bool const reform = jd == 2299160 && cur.tm_mday == 14 && prev.tm_mday == 3;
    ASSERT_TRUE(sameMonth || nextMonth || reform) << jd;
    if (nextMonth) {
      int const y = prev.tm_year + 1900, astronomical = y < 0 ? y + 1 : y;
      bool const leap = jd <= 2299160 ? astronomical % 4 == 0 : DT::isLeapYear(y);
      int const lengths[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
      ASSERT_EQ(prev.tm_mday, lengths[prev.tm_mon]) << jd;
    }
    prev = cur;
  }
  EXPECT_EQ(prev.tm_year + 1900, 9999);
  EXPECT_EQ(prev.tm_mon, 11);
  EXPECT_EQ(prev.tm_mday, 31);
}

TEST(DateTimeCalendarTest, TMToJulianIsTheTruncatingFormulaWithItsCenturyQuirk) {
  for (auto const &r : kCalendarRows) {
    struct tm fields {};
    fields.tm_year = r.year - 1900;
    fields.tm_mon = r.month - 1;
    fields.tm_mday = r.day;
    fields.tm_hour = 12;
    double jd;
    DT::TMToJulian(fields, 0, jd);
    int expected = r.jd;
    if (r.year < 1 && (r.year + 1 - 1) % 4 != 0) expected += 1;  // truncating division below the year 1
    bool const quirk = r.jd >= 2299160 && r.month <= 2 && r.year % 100 == 0 && r.year % 400 != 0;
    if (quirk) expected -= 1;
    ASSERT_EQ(jd, expected) << r.year << "-" << r.month << "-" << r.day;
  }
  struct Case {
    int year, month, day, hour, minute, second, ms;
    double julian;
  } const cases[] = {
      {-4713, 1, 1, 12, 0, 0, 0, 1.0},         // JD 0 by the calendar; the formula gives 1
      {2000, 1, 1, 12, 0, 0, 0, 2451545.0},    //
      {1900, 1, 1, 12, 0, 0, 0, 2415020.0},    // the same number as
      {1899, 12, 31, 12, 0, 0, 0, 2415020.0},  // the day before
      {1900, 3, 1, 12, 0, 0, 0, 2415080.0},    // March is right again
      {2000, 1, 1, 0, 0, 0, 0, 2451544.5},
      {2000, 1, 1, 18, 0, 0, 500, 2451545.25 + 500 * 1.1574074074074074e-8},
  };
  for (auto const &c : cases) {
    double jd;
    DT::TMToJulian(made(c.year, c.month, c.day, c.hour, c.minute, c.second).getTM(), c.ms, jd);
    EXPECT_DOUBLE_EQ(jd, c.julian) << c.year << "-" << c.month << "-" << c.day;
  }
  // Undefined fields stand for 1 January -4713, noon.
  double jd;
  DT::TMToJulian(DT().getTM(), -1, jd);
  EXPECT_EQ(jd, 1.0);
}

TEST(DateTimeCalendarTest, TimeOfDayUsesStrictComparisonsAndRoundsUpFromSix) {
  struct Case {
    double julian;
    int mday, hour, minute, second, ms;
  } const cases[] = {
      {10.25, 11, 18, 0, 0, 0},                                  // 6 hours past noon
      {10.5, 12, 0, 0, 0, 0},                                    // midnight: the next day
      {1.0 / 24, 1, 12, 60, 0, 0},                               // exactly one hour: minute 60
      {10.0 + (12345 + 0.5) / 8.64e8, 11, 12, 0, 1, 234},        // 0.5 tenth: down
      {10.0 + (12346 + 0.5) / 8.64e8, 11, 12, 0, 1, 235},        // 0.6 tenth: up
      {10.0 + (599999 + 0.5) / 8.64e8, 11, 12, 1, 0, 0},         // 59.9999 s carries into the minute
      {10.0 + (35999999 + 0.5) / 8.64e8, 11, 13, 0, 0, 0},       // and on into the hour
      {10.0 + (431999999 + 0.5) / 8.64e8, 12, 0, 0, 0, 0},       // and into the next day
  };
  for (auto const &c : cases) {
    struct tm fields {};
    int ms;
    DT::julianToTM(c.julian, fields, ms);
    EXPECT_EQ(fields.tm_mday, c.mday) << c.julian;
    EXPECT_EQ(fields.tm_hour, c.hour) << c.julian;
    EXPECT_EQ(fields.tm_min, c.minute) << c.julian;
    EXPECT_EQ(fields.tm_sec, c.second) << c.julian;
    EXPECT_EQ(ms, c.ms) << c.julian;
  }
}

TEST(DateTimeCalendarTest, MonthEndAfterMidnightIsCheckedWithYearsSince1900) {
  DT v;
  v.setJulian(2451603.75);  // 2000-02-28 at 18:00 UTC plus 12 hours: 29 February, 06:00
  EXPECT_EQ(v.getMonth(), 3);  // 2000 - 1900 = 100 is no leap year
  EXPECT_EQ(v.getDayOfMonth(), 1);
  EXPECT_EQ(v.getHour(), 6);
  v.setJulian(2415079.5);  // 1 March 1900, midnight: 1900 - 1900 = 0 is a leap year
  EXPECT_EQ(v.getMonth(), 2);
  EXPECT_EQ(v.getDayOfMonth(), 29);
}

TEST(DateTimeCalendarTest, LeapYearsAndMonthLengths) {
  EXPECT_TRUE(DT::isLeapYear(2000));
  EXPECT_FALSE(DT::isLeapYear(1900));
  EXPECT_TRUE(DT::isLeapYear(2024));
  EXPECT_FALSE(DT::isLeapYear(2023));
  int const lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  for (int m = 1; m <= 12; ++m) EXPECT_EQ(DT::daysInMonth(m, 2023), lengths[m - 1]);
  EXPECT_EQ(DT::daysInMonth(2, 2024), 29);
  EXPECT_QUARN_THROW(DT::daysInMonth(13, 2024), "Illegal month number: 13\n");
  EXPECT_QUARN_THROW(DT::daysInMonth(0, 2024), "Illegal month number: 0\n");
}

// ---- fields and whole settings

TEST(DateTimeValueTest, ANewValueIsUndefinedInUtcAndStandsForJulianDayZero) {
  DT v;
  for (int field = 1; field <= 7; ++field) EXPECT_FALSE(v.isFieldDefined(field)) << field;
  EXPECT_EQ(v.getYear(), -9999);
  EXPECT_EQ(v.getTM().tm_year, -9999);
  EXPECT_EQ(str(v.getTimeZone()), u"UTC");
  v.setUndefined(false);
  EXPECT_EQ(v.getYear(), -4713);
  EXPECT_EQ(v.getTM().tm_year, -6613);
  EXPECT_EQ(v.getHour(), 12);
  EXPECT_EQ(v.getMilliseconds(), 0);
  EXPECT_EQ(v.getJulian(), 1.0);  // the truncating formula (see TMToJulian)
  EXPECT_EQ(made(2000, 1, 1).getJulian(), 2451545.0);
  EXPECT_EQ(made(2000, 1, 1).getDayOfWeek(), 7);
}

TEST(DateTimeValueTest, FieldChecksThrowBeforeAnythingChanges) {
  DT v = made(2001, 2, 3, 4, 5, 6, 7);
  DT const before = v;
  struct Case {
    std::function<void()> call;
    char const *message;
  } const cases[] = {
      {[&] { v.setMonth(13); }, "Tried to set a month outside of range [1-12]: 13"},
      {[&] { v.setDayOfMonth(0); }, "Tried to set a day of month outside of range [1-31]: 0"},
      {[&] { v.setHour(24); }, "Tried to set an hour outside of range [0-23]: 24"},
      {[&] { v.setMinute(60); }, "Tried to set a minute outside of range [0-59]: 60"},
      {[&] { v.setSecond(-2); }, "Tried to set a second outside of range [0-59]: -2"},
      {[&] { v.setMilliseconds(1000); }, "Tried to set a millisecond outside of range [0-999]: 1000"},
      {[&] { v.set(2001, 2, 3, 4, 5, 60, 0); }, "Tried to set a second outside of range [0-59]: 60"},
      {[&] { v.set(2001, 0, 3, 4, 5, 6, 0); }, "Tried to set a month outside of range [1-12]: 0"},
      {[&] { v.set(2001, 2, 32, 4, 5, 6, 0); }, "Tried to set a day of month outside of range [1-31]: 32"},
      {[&] { v.setTime(4, 61, 0, 0); }, "Tried to set a minute outside of range [0-59]: 61"},
      {[&] { v.isFieldDefined(8); },
       "Illegal field index 8.  Legal values are: 1:Year 2:Month 3:Day 4:Hour 5:Minute 6:Second 7:Millisecond"},
      {[&] { v.setFieldUndefined(0); },
       "Illegal field index 0.  Legal values are: 1:Year 2:Month 3:Day 4:Hour 5:Minute 6:Second 7:Millisecond"},
      {[&] { v.setSecondsSince1970(-1, 0); },
       "Cannot perform calculation with negative seconds since 1 January, 1970: -1"},
      {[&] { v.setTimeZone(u16(u"xyz"), false); }, "\"xyz\" is not a valid time zone abbreviation"},
  };
  for (auto const &c : cases) {
    EXPECT_QUARN_THROW(c.call(), c.message);
    EXPECT_EQ(serialise(v), serialise(before)) << c.message;
  }
  v.set(2001, 2, 3, 4, 5, 6, 5000);  // milliseconds are not checked here
  EXPECT_EQ(v.getMilliseconds(), 5000);
}

TEST(DateTimeValueTest, SettersClearBothFlagsAndSetUndefinedFillsWithNowOrTheEpoch) {
  DT v = made(2010, 6, 15);
  v.getText();
  EXPECT_EQ(v.getJulian(), made(2010, 6, 15).getJulian());
  v.setFieldUndefined(Year);
  EXPECT_FALSE(v.isFieldDefined(Year));
  v.setUndefined(true);
  EXPECT_EQ(v.getYear(), DT::getCurrentYear());
  EXPECT_EQ(v.getMonth(), 6);
  DT t;
  t.setTime(8, 30, 0, 0);
  EXPECT_FALSE(t.isFieldDefined(Day));
  t.setUndefined(false);
  EXPECT_EQ(t.getYear(), -4713);
  EXPECT_EQ(t.getMonth(), 1);
  EXPECT_EQ(t.getHour(), 8);
}

TEST(DateTimeValueTest, SecondsSince1970AreLocalTimeAndComeBackThroughMktime) {
  DT v;
  v.setSecondsSince1970(86400 + 3600, 250);  // TZ is UTC here
  EXPECT_EQ(v.getYear(), 1970);
  EXPECT_EQ(v.getDayOfMonth(), 2);
  EXPECT_EQ(v.getHour(), 1);
  EXPECT_EQ(v.getMilliseconds(), 250);
  EXPECT_DOUBLE_EQ(v.getJulian(), 2440588.5 + 1.0 / 24 + 250 / 86400000.0);
  EXPECT_EQ(v.getSecondsSince1970(), 86400 + 3600);
  DT now;
  now.setToLocalDateTime();
  EXPECT_LE(std::abs(now.getSecondsSince1970() - static_cast<int>(std::time(nullptr))), 2);
}

TEST(DateTimeValueTest, SetJulianKeepsTheNumberAndMovesToUtc) {
  DT v = made(2020, 7, 1);
  v.setTimeZone(u16(u"EST"), false);
  v.setJulian(2451545.25);
  EXPECT_EQ(v.getTimeZoneIndex(), 28);
  EXPECT_EQ(v.getJulian(), 2451545.25);
  EXPECT_EQ(v.getHour(), 18);
  EXPECT_EQ(v.getTM().tm_isdst, 0);
}

// ---- zones

TEST(DateTimeZoneTest, OffsetsChooseTheFirstRowWithThatHhmm) {
  struct Case {
    double hours;
    char16_t const *zone;
  } const cases[] = {{5.5, u"IST"}, {0, u"GMT"}, {-5, u"EST"}, {-3.5, u"NST"}, {13, u"NZDT"},
                     {5.75, u"Nepal Standard Time"}, {7.25, u"UTC"}, {-13, u"UTC"}};
  for (auto const &c : cases) {
    DT v = made(2021, 1, 15);
    v.setTimeZone(u16(u"CET"), false);
    v.setTimeZoneOffset(c.hours);
    EXPECT_EQ(str(v.getTimeZone()), c.zone) << c.hours;
  }
  DT est = made(2021, 1, 15);
  est.setTimeZone(u16(u"est"), false);
  EXPECT_EQ(est.getTimeZoneOffset(), 5.0);  // the magnitude
  est.setTimeZone(u16(u"IST"), false);
  EXPECT_EQ(est.getTimeZoneOffset(), 5.5);
}

TEST(DateTimeZoneTest, ConvertingKeepsTheInstantLabellingDoesNot) {
  DT v = made(2021, 1, 15, 12, 0, 0, 0);  // 12:00 UTC
  double const instant = v.getJulian();
  v.setTimeZone(u16(u"EST"), true);
  EXPECT_EQ(v.getHour(), 7);
  EXPECT_EQ(str(v.getTimeZone()), u"EST");
  EXPECT_NEAR(v.getJulian(), instant, 1e-9);
  v.setTimeZone(u16(u"UTC"), true);
  EXPECT_EQ(v.getHour(), 12);
  EXPECT_NEAR(v.getJulian(), instant, 1e-9);
  DT w = made(2021, 1, 15, 12, 0, 0, 0);
  w.setTimeZone(u16(u"EST"), false);
  EXPECT_EQ(w.getHour(), 12);
  EXPECT_NEAR(w.getJulian(), instant + 5.0 / 24, 1e-9);
}

/// Runs `body` in a child process whose machine zone is `tz`; the child's exit status is its verdict.
void inZone(char const *tz, std::function<bool()> const &body) {
  EXPECT_EXIT(
      {
        setenv("TZ", tz, 1);
        tzset();
        DT::loadLocale();
        std::_Exit(body() ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "")
      << tz;
}

/// The day-of-month of the n-th (or, for n 0, the last) Sunday of a month.
int sunday(int year, unsigned month, unsigned n) {
  using namespace std::chrono;
  if (n == 0) return static_cast<int>(unsigned(year_month_day(sys_days(std::chrono::year(year) / month / Sunday[last])).day()));
  return static_cast<int>(unsigned(year_month_day(sys_days(std::chrono::year(year) / month / Sunday[n])).day()));
}

bool dstOn(int y, int m, int d) {
  DT v;
  v.setYear(y);
  v.setMonth(m);
  v.setDayOfMonth(d);
  return v.IsDST();
}

/// Every boundary day of 1959-2030: the first daylight day, the day before it, the last one and the day after.
bool boundariesHold(int rule) {
  bool ok = true;
  for (int y = 1959; y <= 2030; ++y) {
    int startMonth, startDay, endMonth, endDay;  // first daylight day, first standard day after
    if (rule == 2) {
      startMonth = 3, startDay = sunday(y, 3, 0), endMonth = 10, endDay = sunday(y, 10, 0);
    } else if (y > 2006) {
      startMonth = 3, startDay = sunday(y, 3, 2), endMonth = 11, endDay = sunday(y, 11, 1);
    } else {
      startMonth = 4, startDay = sunday(y, 4, 1), endMonth = 10, endDay = sunday(y, 10, 0);
    }
    bool const active = rule != 0 && !(rule == 1 && y < 1960);
    struct Probe {
      int m, d;
      bool on;
    } const probes[] = {{startMonth, startDay - 1, false}, {startMonth, startDay, active},
                        {endMonth, endDay - 1, active},    {endMonth, endDay, false},
                        {1, 15, false},                    {7, 15, active}};
    for (auto const &p : probes)
      if (p.d >= 1 && dstOn(y, p.m, p.d) != p.on) {
        std::fprintf(stderr, "rule %d: %d-%02d-%02d should be %d\n", rule, y, p.m, p.d, p.on);
        ok = false;
      }
  }
  return ok;
}

TEST(DateTimeZoneTest, DaylightRulesFollowTheMachineZoneOnTheirBoundaryDays) {
  inZone("EST5EDT", [] { return DT::GetLocaleTimeZoneIndex() == 16 && boundariesHold(1); });
  inZone("CET-1CEST", [] { return DT::GetLocaleTimeZoneIndex() == 30 && boundariesHold(2); });
  inZone("UTC", [] { return DT::GetLocaleTimeZoneIndex() == 28 && boundariesHold(0); });
  inZone("XYZ3", [] { return DT::GetLocaleTimeZoneIndex() == 28; });
}

TEST(DateTimeZoneTest, AZoneWithARuleStepsToItsDaylightPartner) {
  inZone("EST5EDT", [] {
    DT summer = made(2021, 7, 4), winter = made(2021, 1, 4);
    summer.setTimeZone(WString("EST"), false);
    winter.setTimeZone(WString("EDT"), false);
    DT offset = made(2021, 7, 4);
    offset.setTimeZoneOffset(-5);
    return str(summer.getTimeZone()) == u"EDT" && summer.getTM().tm_isdst == 1 && str(winter.getTimeZone()) == u"EST" &&
           winter.getTM().tm_isdst == 0 && str(offset.getTimeZone()) == u"EDT";
  });
}

// ---- reading

TEST(DateTimeValueTest, IsoWeeksOfEveryYearEndMatchTheReference) {
  for (auto const &r : kIsoWeekRows) {
    int weekYear = 0;
    int const week = made(r.year, r.month, r.day).getWeekOfYear(weekYear);
    EXPECT_EQ(week, r.week) << r.year << "-" << r.month << "-" << r.day;
    EXPECT_EQ(weekYear, r.weekYear) << r.year << "-" << r.month << "-" << r.day;
  }
}

TEST(DateTimeValueTest, DayOfWeekAndDayOfYear) {
  struct Case {
    int y, m, d, dow, doy;
  } const cases[] = {{2000, 1, 1, 7, 1}, {2000, 12, 31, 1, 366}, {2023, 12, 31, 1, 365}, {2024, 3, 1, 6, 61},
                     {1970, 1, 1, 5, 1}, {1582, 10, 15, 6, 278}};  // days elapsed since 1 January: the ten dropped days are missing
  for (auto const &c : cases) {
    DT v = made(c.y, c.m, c.d, 23, 59, 59);
    EXPECT_EQ(v.getDayOfWeek(), c.dow) << c.y << "-" << c.m << "-" << c.d;
    EXPECT_EQ(v.getDayOfYear(), c.doy) << c.y << "-" << c.m << "-" << c.d;
  }
  DT undefinedDay = made(2000, 1, 1);
  undefinedDay.setFieldUndefined(Day);
  EXPECT_EQ(undefinedDay.getDayOfWeek(), 0);
  EXPECT_EQ(str(undefinedDay.getDayOfWeekText(false, false)), u"");
  DT v = made(2024, 2, 14);
  EXPECT_EQ(str(v.getDayOfWeekText(false, false)), u"Wednesday");
  EXPECT_EQ(str(v.getDayOfWeekText(true, true)), u"Wed");
  EXPECT_EQ(str(v.getMonthText(false, true)), u"Feb");
  EXPECT_EQ(str(v.getMonthText(true, false)), u"February");
}

// ---- arithmetic

TEST(DateTimeValueTest, ArithmeticMovesTheInstantAndMonthsCarryIntoYears) {
  DT v = made(2021, 1, 31, 10, 0, 0, 0);
  v.addMonths(-1);
  EXPECT_EQ(v.getYear(), 2020);
  EXPECT_EQ(v.getMonth(), 12);
  v.addMonths(14);
  EXPECT_EQ(v.getYear(), 2022);
  EXPECT_EQ(v.getMonth(), 2);
  EXPECT_EQ(v.getDayOfMonth(), 31);  // not clamped
  v.addYears(-2);
  EXPECT_EQ(v.getYear(), 2020);
  DT d = made(2000, 2, 28, 23, 0, 0, 0);
  d.addHours(2);
  EXPECT_EQ(d.getMonth(), 3);  // 29 February 2000 after midnight reads as 1 March (see julianToTM)
  d = made(2021, 12, 31, 23, 59, 59, 999);
  d.addMilliseconds(1);
  EXPECT_EQ(d.getYear(), 2022);
  EXPECT_EQ(d.getHour(), 0);
  EXPECT_EQ(d.getMilliseconds(), 0);
  d.addDays(1.5);
  EXPECT_EQ(d.getDayOfMonth(), 2);
  EXPECT_EQ(d.getHour(), 12);
  d.addMinutes(-30);
  d.addSeconds(-1800);
  EXPECT_EQ(d.getHour(), 11);
  DT far = made(2000, 1, 1);
  far.addYears(INT_MAX);
  far.addYears(1);
  EXPECT_EQ(far.getYear(), INT_MAX);  // saturates
  DT e;
  e.addDays(0);  // nothing to do: stays undefined
  EXPECT_FALSE(e.isFieldDefined(Year));
}

// ---- Value contract

TEST(DateTimeValueTest, CompareUsesStoredJuliansWithTheSignReversed) {
  DT early = made(2000, 1, 1), late = made(2000, 1, 2);
  EXPECT_EQ(early.compare(late), 0);  // neither julian is valid yet: both 0.0
  early.getJulian();
  late.getJulian();
  EXPECT_EQ(early.compare(late), 1);
  EXPECT_EQ(late.compare(early), -1);
  EXPECT_TRUE(early < late);
  EXPECT_TRUE(late >= early);
  EXPECT_TRUE(early != late);
  DT nan;
  nan.setJulian(std::nan(""));
  EXPECT_EQ(nan.compare(early), 0);
  EXPECT_FALSE(nan.getBoolean());
  EXPECT_EQ(nan.getInteger(), INT_MIN);
  IntegerValue i;
  EXPECT_GT(early.compare(i), 0);  // "Marlix.value.IntegerValue" after "...DateTimeValue"
  EXPECT_EQ(early.hash(), 2451545u);
  DT before1;
  before1.setJulian(-0.75);
  EXPECT_EQ(before1.hash(), 0u);
  EXPECT_EQ(before1.getInteger(), -1);
  DT zero;
  zero.setJulian(0.0);
  EXPECT_TRUE(zero.getBoolean());
  Array<double> doubles;
  early.getArray(doubles);
  ASSERT_EQ(doubles.getSize(), 1u);
  EXPECT_EQ(doubles[0], 2451545.0);
}

TEST(DateTimeValueTest, PayloadGoldenBytesBothWays) {
  DT v = made(2000, 1, 1);
  v.getJulian();
  Bytes const bytes = golden("04 01 02 00 00 00 80 2C B4 42 41 00 00 30 00 04 00 00 00 FC 01 64 FC 00 01 1C");
  EXPECT_EQ(hexOf(serialise(v, 1)), hexOf(bytes));
  EXPECT_EQ(hexOf(serialise(v, 2)), hexOf(bytes));
  readEach<DT>(bytes, 2, [&](DT const &read) {
    EXPECT_EQ(read.compare(v), 0);
    EXPECT_EQ(read.getYear(), 2000);
    EXPECT_EQ(read.getTM().tm_yday, -1);
  });
  DT cached = made(1999, 12, 31, 23, 59, 58, 7);
  cached.setDateTimeFormat(u16(u"%T").getBuffer());
  cached.getText();
  Bytes const withText =
      golden("04 00 01 24 32 33 3A 35 39 3A 35 38 0C 25 54 01 17 00 01 1F 01 3B 2C 01 3A FC 01 63 FC 1C 01 1C");
  EXPECT_EQ(hexOf(serialise(cached, 2)), hexOf(withText));
  readEach<DT>(withText, 2, [&](DT const &read) {
    EXPECT_EQ(str(read.getText()), u"23:59:58");
    EXPECT_EQ(read.getMilliseconds(), 7);
    EXPECT_EQ(read.getJulian(), cached.getJulian());
  });
  expectEveryCutFails<DT>(bytes, made(1, 1, 1));
  expectEveryCutFails<DT>(withText, made(1, 1, 1));
}

TEST(DateTimeValueTest, BadPayloadsAreRefusedAndLeaveTheValue) {
  DT const before = made(2001, 1, 1);
  struct Case {
    char const *hex, *message;
  } const cases[] = {
      {"08", "Incompatible version '2' in DateTimeValue deserialization"},
      {"04 00 00 00 30 00 04 00 30 00 00 01 64 00 00 01 1C", "Invalid month 12 in DateTimeValue deserialization"},
      {"04 00 00 00 30 00 04 00 00 00 00 01 64 00 00 03 D9 00 00 00", "Invalid time zone row 217 in DateTimeValue deserialization"},
      {"04 00 00 00 01 63 00 04 00 00 00 00 01 64 00 00 01 1C", "Invalid hour 99 in DateTimeValue deserialization"},
      {"04 00 00 00 30 00 04 00 00 00 00 03 FF FF FF 7F 00 00 01 1C",
       "Invalid year 2147483647 in DateTimeValue deserialization"},
  };
  for (auto const &c : cases) {
    DT target(before);
    ChunkedInputStream in(golden(c.hex), 1024);
    EXPECT_QUARN_THROW(target.deserialize(in), c.message);
    EXPECT_EQ(serialise(target), serialise(before));
  }
}

TEST(DateTimeValueTest, ConvertersBothWays) {
  DT v = made(2000, 1, 1);
  Owned<StringValue> text(StringValue::newInstance());
  v.assignTo(*text);
  EXPECT_EQ(str(text->getString()), u"Sat Jan  1 12:00:00 2000");
  Owned<DoubleValue> number(DoubleValue::newInstance());
  v.assignTo(*number);
  EXPECT_EQ(number->getDouble(), 2451545.0);
  Owned<IntegerValue> whole(IntegerValue::newInstance());
  v.assignTo(*whole);
  EXPECT_EQ(whole->getInteger(), 2451545);
  FlexValue flex;
  v.assignTo(flex);
  EXPECT_EQ(flex.getDouble(), 2451545.0);

  DT back;
  StringValue iso("2021-03-04T05:06:07Z");
  iso.assignTo(back);
  EXPECT_EQ(back.getYear(), 2021);
  EXPECT_EQ(back.getSecond(), 7);
  EXPECT_EQ(str(back.getDateTimeFormat()), u"%Y-%m-%dT%H:%M:%S%z");
  DoubleValue(2451545.5).assignTo(back);
  EXPECT_EQ(back.getDayOfMonth(), 2);
  EXPECT_EQ(back.getHour(), 0);
  IntegerValue(2451545).assignTo(back);
  EXPECT_EQ(back.getJulian(), 2451545.0);
  FlexValue(u16(u"12/25/99")).assignTo(back);
  EXPECT_EQ(back.getYear(), 1999);
  FlexValue(2451545.0).assignTo(back);
  EXPECT_EQ(back.getYear(), 2000);
  NullValue().assignTo(back);
  EXPECT_FALSE(back.isFieldDefined(Year));
  DT const kept = made(2010, 10, 10);
  DT target(kept);
  EXPECT_QUARN_THROW(StringValue("not a date").assignTo(target), "No date-time format fits \"not a date\"");
  EXPECT_EQ(serialise(target), serialise(kept));
}

TEST(DateTimeValueTest, PoolHandsOutClearedValues) {
  DT *first = DT::newInstance();
  first->set(2000, 1, 1, 12, 0, 0, 0);
  first->setTimeZone(u16(u"CET"), false);
  first->deleteInstance();
  DT *second = DT::allocate();
  EXPECT_EQ(second, first);
  EXPECT_FALSE(second->isFieldDefined(Year));
  EXPECT_EQ(second->getTimeZoneIndex(), 28);
  second->deleteInstance();
}

}  // namespace
}  // namespace quarn::test
