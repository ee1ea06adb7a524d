// DateTimeCalendar.cpp - the calendar arithmetic of DateTimeValue
//
// TMToJulian is the classic truncating formula, kept as it is (a day off
// before the year 1, and the century quirk of 1700/1800/1900/2100).
// julianToTM splits the day number exactly (Julian calendar below 2299160,
// Gregorian from it on) and then works out the time of day from the fraction
// in tenths of a millisecond with strict comparisons.
#include <quarn/value/DateTimeValue.h>
#include <quarnCore/Exception.h>

#include <cmath>
#include <cstdint>

namespace quarn {

namespace {

// Cumulative days before each month.
constexpr int kCommon[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
constexpr int kLeap[13] = {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366};

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

/// Astronomical year (0 is 1 BC), month 1-12 and day of a whole day number.
struct Civil {
  std::int64_t year;
  int month, day;
};

constexpr Civil civilOf(std::int64_t jd) {
  std::int64_t era, doe, yoe;
  if (jd >= 2299160) {  // Gregorian: 400-year eras of 146097 days from 1 March 0
    std::int64_t z = jd - 1721120;
    era = floorDiv(z, 146097);
    doe = z - era * 146097;
    yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    std::int64_t mp = (5 * doy + 2) / 153;
    int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    return {yoe + era * 400 + (m <= 2), m, d};
  }
  // Julian: 4-year cycles of 1461 days from 1 March 0
  std::int64_t z = jd - 1721118;
  era = floorDiv(z, 1461);
  doe = z - era * 1461;
  yoe = (doe - doe / 1460) / 365;
  std::int64_t doy = doe - 365 * yoe;
  std::int64_t mp = (5 * doy + 2) / 153;
  int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  return {yoe + era * 4 + (m <= 2), m, d};
}
static_assert(civilOf(0).year == -4712 && civilOf(0).month == 1 && civilOf(0).day == 1);
static_assert(civilOf(1721424).year == 1 && civilOf(1721424).month == 1 && civilOf(1721424).day == 1);
static_assert(civilOf(2299159).month == 10 && civilOf(2299159).day == 3);
static_assert(civilOf(2299160).month == 10 && civilOf(2299160).day == 14);

}  // namespace

bool DateTimeValue::isLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DateTimeValue::daysInMonth(int month, int year) {
  switch (month) {
    case 1: case 3: case 5: case 7: case 8: case 10: case 12:
      return 31;
    case 4: case 6: case 9: case 11:
      return 30;
    case 2:
      return isLeapYear(year) ? 29 : 28;
    default:
      throw Exception("Illegal month number: %d\n", month);
  }
}

void DateTimeValue::TMToJulian(struct tm const &fields, int ms, double &julian) {
  std::int64_t year = fields.tm_year == kUndefinedYear ? -4713 : std::int64_t{fields.tm_year} + 1900;
  std::int64_t month = fields.tm_mon == -1 ? 0 : fields.tm_mon;
  if (month < 0 || month > 11) {  // not from a setter: carry whole years
    year += floorDiv(month, 12);
    month -= floorDiv(month, 12) * 12;
  }
  std::int64_t day = fields.tm_mday == -1 ? 1 : fields.tm_mday;
  std::int64_t hour = fields.tm_hour == -1 ? 12 : fields.tm_hour;
  std::int64_t minute = fields.tm_min == -1 ? 0 : fields.tm_min;
  std::int64_t second = fields.tm_sec == -1 ? 0 : fields.tm_sec;
  std::int64_t y = year < 0 ? year + 1 : year;  // no year zero
  int const *table = y % 4 == 0 ? kLeap : kCommon;
  std::int64_t j = 365 * y + table[month] + (y - 1) / 4 + day + 1721058;
  if (j >= 2299169) {
    std::int64_t c = y / 100;
    j += c / 4 - c + 2;
  }
  julian = static_cast<double>(j) + static_cast<double>(((hour - 12) * 60 + minute) * 60 + second) * 1.1574074074074073e-5;
  if (ms > 0) julian += ms * 1.1574074074074074e-8;
}

void DateTimeValue::julianToTM(double julian, struct tm &fields, int &ms) {
  // Beyond about a million years (or NaN) there is no calendar date to give.
  if (!(std::fabs(julian) < 4e8)) {
    fields.tm_year = kUndefinedYear;
    fields.tm_mon = fields.tm_mday = fields.tm_hour = fields.tm_min = fields.tm_sec = -1;
    fields.tm_wday = fields.tm_yday = -1;
    ms = -1;
    return;
  }
  double const whole = std::floor(julian);
  std::int64_t const jd = static_cast<std::int64_t>(whole);
  Civil date = civilOf(jd);
  int year = static_cast<int>(date.year <= 0 ? date.year - 1 : date.year);
  int month = date.month - 1;
  int day = date.day;

  int f = static_cast<int>((julian - whole) * 8.64e8);  // tenths of a millisecond
  int h = 0, minute = 0, second = 0;
  if (f > 36000000) {
    h = f / 36000000;
    f -= 36000000 * h;
  }
  if (f > 600000) {
    minute = f / 600000;
    f -= 600000 * minute;
  }
  if (f > 10000) {
    second = f / 10000;
    f -= 10000 * second;
  }
  ms = f / 10 + (f % 10 >= 6 ? 1 : 0);
  if (ms == 1000) {
    ms = 0;
    if (++second == 60) {
      second = 0;
      if (++minute == 60) {
        minute = 0;
        ++h;
      }
    }
  }
  int hour = 12 + h;
  bool nextDay = false;
  fields.tm_year = year - 1900;
  if (hour >= 24) {
    hour -= 24;
    nextDay = true;
    if (++day > daysInMonth(month + 1, fields.tm_year)) {
      day = 1;
      if (++month > 11) {
        month = 0;
        ++fields.tm_year;
      }
    }
  }
  fields.tm_mon = month;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  // Weekday of the day shown, and the day of year of the fields as shown.
  std::int64_t const shown = jd + (nextDay ? 1 : 0);
  fields.tm_wday = static_cast<int>(shown + 1 - floorDiv(shown + 1, 7) * 7);
  int const y = fields.tm_year + 1900, astronomical = y < 0 ? y + 1 : y;
  bool const leap = jd < 2299160 ? astronomical % 4 == 0 : isLeapYear(y);
  fields.tm_yday = (leap ? kLeap : kCommon)[month] + day - 1;
}

}  // namespace quarn
