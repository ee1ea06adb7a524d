// DateTimeCalendar.h - the calendar arithmetic under DateTimeValue, inline for callers in hot loops
//
// tmToJulian is the classic truncating formula, kept as it is: a day off
// before the year 1, and 1 January and February of 1700, 1800, 1900 and 2100
// land one day early. julianToTm splits the day number exactly (Julian
// calendar below 2299160, Gregorian from it on) and then works out the time of
// day from the fraction in tenths of a millisecond with strict comparisons,
// rounding milliseconds up from six tenths and checking the month end after
// midnight with the years since 1900; it leaves weekday and day of year at
// -1, as every whole setting of DateTimeValue does. Use them through
// DateTimeValue::TMToJulian and DateTimeValue::julianToTM.
//
// Both are written for throughput: the common case (defined fields from the
// year 1 on; day numbers from 2299160 on) runs straight through, its only
// branches range checks that ordinary dates pass, and everything else goes
// to an out-of-line general path that gives the same results.
#pragma once

#include <cmath>
#include <cstdint>
#include <ctime>

namespace quarn::detail::calendar {

/// The year field's undefined marker (DateTimeValue::kUndefinedYear).
inline constexpr int kUndefinedYearField = -9999;

/// floor(x) for |x| < 2^62, inline (without SSE4.1 std::floor is a library call).
inline double floorSmall(double x) {
  double const t = static_cast<double>(static_cast<long long>(x));
  return t > x ? t - 1 : t;
}

inline constexpr bool gregorianLeap(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// Cumulative days before each month.
inline constexpr int kCommon[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
// Four times the days before each month, less one in January and February.
inline constexpr std::int64_t kQuarterDays[12] = {-1, 123, 236, 360, 480, 604, 724, 848, 972, 1092, 1216, 1336};

// Days in each month of a common year.
inline constexpr int kMonthDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// Astronomical year (0 is 1 BC), month 1-12 and day of a whole day number (|jd| < 4e8).
struct Civil {
  int year, month, day;
};

/// The date of day doy (0-365) of a year that starts on 1 March: the month
/// and day from a 16-bit fixed-point line through the month starts (Neri and
/// Schneider), January and February in the calendar year after.
constexpr Civil civilOfMarchDay(unsigned year, unsigned doy) {
  unsigned const n = 2141 * doy + 197913;
  unsigned const j = doy >= 306;
  return {static_cast<int>(year + j), static_cast<int>((n >> 16) - 12 * j), static_cast<int>((n & 0xffff) / 2141 + 1)};
}

constexpr Civil civilOf(int jd) {
  if (jd >= 2299160) [[likely]] {
    // Gregorian, in days from 1 March 0 (positive here): 400-year eras, then
    // the 4-year cycles of a century split in one multiplication, whose low
    // half is the day in the year.
    unsigned const n1 = 4 * static_cast<unsigned>(jd - 1721120) + 3;
    unsigned const century = n1 / 146097;
    unsigned const n2 = (n1 - 146097 * century) | 3;
    std::uint64_t const p = std::uint64_t{2939745} * n2;
    unsigned const yoc = static_cast<unsigned>(p >> 32);
    unsigned const doy = static_cast<unsigned>(p) / 11758980;
    return civilOfMarchDay(100 * century + yoc, doy);
  }
  // Julian: years of 1461/4 days from 1 March 0, shifted by 275000 four-year
  // cycles so that everything down to -4e8 is non-negative.
  constexpr int kShift = 275000;
  unsigned const n2 = 4 * static_cast<unsigned>(jd - 1721118 + 1461 * kShift) + 3;
  unsigned const years = n2 / 1461;
  Civil c = civilOfMarchDay(years, (n2 - 1461 * years) / 4);
  c.year -= 4 * kShift;
  return c;
}
static_assert(civilOf(0).year == -4712 && civilOf(0).month == 1 && civilOf(0).day == 1);
static_assert(civilOf(1721424).year == 1 && civilOf(1721424).month == 1 && civilOf(1721424).day == 1);
static_assert(civilOf(2299159).month == 10 && civilOf(2299159).day == 3);
static_assert(civilOf(2299160).month == 10 && civilOf(2299160).day == 14);

/// Every field defined and ordinary, the year from 1 to a few million: the
/// same formula in unsigned arithmetic, where truncating is flooring.
inline bool ordinaryFields(struct tm const &f) {
  // Day and time fields below 2^20 together (which also excludes -1, the
  // undefined marker): one comparison.
  unsigned const small = static_cast<unsigned>(f.tm_mday) | static_cast<unsigned>(f.tm_hour) |
                         static_cast<unsigned>(f.tm_min) | static_cast<unsigned>(f.tm_sec);
  return static_cast<unsigned>(f.tm_year) + 1899 < 4000000 + 1899 && static_cast<unsigned>(f.tm_mon) < 12 &&
         small < (1u << 20);
}

/// Any fields: undefined ones replaced, months carried into the year, truncating division.
[[gnu::cold, gnu::noinline]] inline double tmToJulianGeneral(struct tm const &fields, int ms) {
  using I = std::int64_t;  // no field value can overflow it
  I year = fields.tm_year == kUndefinedYearField ? I{-4713} : I{fields.tm_year} + 1900;
  I month = fields.tm_mon == -1 ? 0 : fields.tm_mon;
  if (month < 0 || month > 11) [[unlikely]] {  // not from a setter: carry whole years
    I const carry = month / 12 - (month % 12 < 0);
    year += carry;
    month -= carry * 12;
  }
  I const day = fields.tm_mday == -1 ? 1 : fields.tm_mday;
  int const hour = fields.tm_hour == -1 ? 12 : fields.tm_hour;
  int const minute = fields.tm_min == -1 ? 0 : fields.tm_min;
  int const second = fields.tm_sec == -1 ? 0 : fields.tm_sec;
  I const y = year < 0 ? year + 1 : year;  // no year zero
  I j = 365 * y + kCommon[month] + ((y & 3) == 0 && month >= 2) + (y - 1) / 4 + day + 1721058;
  if (j >= 2299169) {
    I const c = y / 100;
    j += c / 4 - c + 2;
  }
  double julian = static_cast<double>(j) + (((hour - 12) * 60 + minute) * 60 + second) * 1.1574074074074073e-5;
  if (ms > 0) julian += ms * 1.1574074074074074e-8;
  return julian;
}

inline double tmToJulian(struct tm const &fields, int ms) {
  if (ordinaryFields(fields)) [[likely]] {
    unsigned const y = static_cast<unsigned>(fields.tm_year + 1900);
    // 365 * y + kCommon[month] + (y - 1) / 4 + (y % 4 == 0 && month >= 2) in one
    // division: the leap days are (y - (month < 2)) / 4.
    unsigned const j = static_cast<unsigned>((std::uint64_t{1461} * y + kQuarterDays[fields.tm_mon]) / 4) +
                       static_cast<unsigned>(fields.tm_mday) + 1721058;
    unsigned day = j;
    if (j >= 2299169) {
      unsigned const c = y / 100;
      day += c / 4 + 2 - c;  // stays positive
    }
    long long const seconds = fields.tm_hour * 3600LL + fields.tm_min * 60LL + fields.tm_sec - 43200;
    return (static_cast<double>(day) + static_cast<double>(seconds) * 1.1574074074074073e-5) +
           (ms > 0 ? ms : 0) * 1.1574074074074074e-8;
  }
  return tmToJulianGeneral(fields, ms);
}

/// The date of the day number jd, or of the day after it when nextDay is 1:
/// the true calendar date of jd, then the month's length by the years since
/// 1900, deliberately.
[[gnu::cold, gnu::noinline]] inline void dateOfGeneral(int jd, int nextDay, struct tm &fields) {
  Civil const date = civilOf(jd);
  int year = (date.year <= 0 ? date.year - 1 : date.year) - 1900;  // no year zero
  int month = date.month - 1;
  int day = date.day + nextDay;
  if (nextDay && day > 28 && day > kMonthDays[month] + (month == 1 && gregorianLeap(year))) {
    day = 1;
    if (++month > 11) {
      month = 0;
      ++year;
    }
  }
  fields.tm_year = year;
  fields.tm_mon = month;
  fields.tm_mday = day;
}

/// Hours, minutes, seconds and milliseconds after noon.
struct DayTime {
  unsigned hours, minutes, seconds;
  int ms;
};

/// Splits tenths of a millisecond into hours, minutes, seconds and
/// milliseconds rounded up from six tenths. The split compares strictly, so
/// a value exactly on a whole hour or minute leaves a full unit in the next
/// field down; apart from that it is the plain split of the rounded whole
/// milliseconds, which makes every carry at once.
constexpr DayTime splitDay(unsigned f) {
  unsigned const total = (f + 4) / 10;
  unsigned const seconds = total / 1000, minutes = total / 60000;
  DayTime t{total / 3600000, 0, 0, 0};
  t.minutes = minutes - 60 * t.hours;
  t.seconds = seconds - 60 * minutes;
  t.ms = static_cast<int>(total - 1000 * seconds);
  if ((t.seconds | static_cast<unsigned>(t.ms)) == 0) [[unlikely]] {
    if (f == 36000000) {  // one hour after noon reads 12:60:00
      t.hours = 0;
      t.minutes = 60;
    } else if (f % 36000000 == 600000) {  // a minute past the hour reads hh:00:60
      t.minutes = 0;
      t.seconds = 60;
    }
  }
  return t;
}

inline void julianToTm(double julian, struct tm &fields, int &ms) {
  // Beyond about a million years (or NaN) there is no calendar date to give.
  if (!(std::fabs(julian) < 4e8)) [[unlikely]] {
    fields.tm_year = kUndefinedYearField;
    fields.tm_mon = fields.tm_mday = fields.tm_hour = fields.tm_min = fields.tm_sec = -1;
    fields.tm_wday = fields.tm_yday = -1;
    ms = -1;
    return;
  }
  long long const t = static_cast<long long>(julian);
  double const truncated = static_cast<double>(t);
  bool const below = truncated > julian;  // negative with a fraction: floor is one less
  int const jd = static_cast<int>(t) - below;
  double const tenths = (julian - (below ? truncated - 1 : truncated)) * 8.64e8;  // of a millisecond
  DayTime const time = splitDay(static_cast<unsigned>(tenths));
  // From 12 hours after noon on (after rounding), the date is the day after the day number's.
  int const nextDay = tenths >= 431999996.0;
  ms = time.ms;
  fields.tm_hour = static_cast<int>(12 + time.hours) - 24 * nextDay;
  fields.tm_min = static_cast<int>(time.minutes);
  fields.tm_sec = static_cast<int>(time.seconds);
  fields.tm_wday = fields.tm_yday = -1;

  if (jd >= 2299160) [[likely]] {
    // The Gregorian date of the next day straight away (as in civilOf),
    // unless it is 1 March or 29 February of a century year, the only days
    // on which the month's length by the years since 1900 makes a difference.
    unsigned const n1 = 4 * static_cast<unsigned>(jd + nextDay - 1721120) + 3;
    unsigned const century = n1 / 146097;
    unsigned const n2 = (n1 - 146097 * century) | 3;  // 3 on 1 March, 146099 on 29 February
    if (n2 - 7 < 146092) [[likely]] {
      std::uint64_t const p = std::uint64_t{2939745} * n2;
      Civil const date =
          civilOfMarchDay(100 * century + static_cast<unsigned>(p >> 32), static_cast<unsigned>(p) / 11758980);
      fields.tm_year = date.year - 1900;
      fields.tm_mon = date.month - 1;
      fields.tm_mday = date.day;
      return;
    }
  }
  dateOfGeneral(jd, nextDay, fields);
}

}  // namespace quarn::detail::calendar
