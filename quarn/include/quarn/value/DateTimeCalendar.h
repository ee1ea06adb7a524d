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
inline constexpr int kLeap[13] = {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366};

constexpr int floorDiv(int a, int b) { return a / b - (a % b < 0); }  // b > 0

/// Astronomical year (0 is 1 BC), month 1-12 and day of a whole day number (|jd| < 4e8).
struct Civil {
  int year, month, day;
};

constexpr Civil civilOf(int jd) {
  // Within an era every quantity is non-negative: unsigned division is cheaper.
  if (jd >= 2299160) {  // Gregorian: 400-year eras of 146097 days from 1 March 0
    int const z = jd - 1721120;
    int const era = floorDiv(z, 146097);
    unsigned const doe = static_cast<unsigned>(z - era * 146097);
    unsigned const yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    unsigned const doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    unsigned const mp = (5 * doy + 2) / 153;
    int const d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    int const m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    return {static_cast<int>(yoe) + era * 400 + (m <= 2), m, d};
  }
  // Julian: 4-year cycles of 1461 days from 1 March 0
  int const z = jd - 1721118;
  int const era = floorDiv(z, 1461);
  unsigned const doe = static_cast<unsigned>(z - era * 1461);
  unsigned const yoe = (doe - doe / 1460) / 365;
  unsigned const doy = doe - 365 * yoe;
  unsigned const mp = (5 * doy + 2) / 153;
  int const d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  int const m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  return {static_cast<int>(yoe) + era * 4 + (m <= 2), m, d};
}
static_assert(civilOf(0).year == -4712 && civilOf(0).month == 1 && civilOf(0).day == 1);
static_assert(civilOf(1721424).year == 1 && civilOf(1721424).month == 1 && civilOf(1721424).day == 1);
static_assert(civilOf(2299159).month == 10 && civilOf(2299159).day == 3);
static_assert(civilOf(2299160).month == 10 && civilOf(2299160).day == 14);

/// Every field defined and ordinary, the year from 1 to a few million: the
/// same formula in unsigned arithmetic, where truncating is flooring.
inline bool ordinaryFields(struct tm const &f) {
  constexpr unsigned kSmall = 1000000;  // also excludes -1, the undefined marker
  return f.tm_year >= 1 - 1900 && f.tm_year < 4000000 && static_cast<unsigned>(f.tm_mon) < 12 &&
         static_cast<unsigned>(f.tm_mday) < kSmall && static_cast<unsigned>(f.tm_hour) < kSmall &&
         static_cast<unsigned>(f.tm_min) < kSmall && static_cast<unsigned>(f.tm_sec) < kSmall;
}

inline double tmToJulian(struct tm const &fields, int ms) {
  if (ordinaryFields(fields)) [[likely]] {
    unsigned const y = static_cast<unsigned>(fields.tm_year + 1900);
    unsigned const month = static_cast<unsigned>(fields.tm_mon);
    unsigned const j = 365 * y + static_cast<unsigned>(kCommon[month]) + ((y & 3) == 0 && month >= 2) + (y - 1) / 4 +
                       static_cast<unsigned>(fields.tm_mday) + 1721058;
    long long day = j;
    if (j >= 2299169) {
      unsigned const c = y / 100;
      day += static_cast<long long>(c / 4) - static_cast<long long>(c) + 2;
    }
    long long const seconds = ((fields.tm_hour - 12LL) * 60 + fields.tm_min) * 60 + fields.tm_sec;
    return (static_cast<double>(day) + static_cast<double>(seconds) * 1.1574074074074073e-5) +
           (ms > 0 ? ms : 0) * 1.1574074074074074e-8;
  }
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

inline void julianToTm(double julian, struct tm &fields, int &ms) {
  // Beyond about a million years (or NaN) there is no calendar date to give.
  if (!(std::fabs(julian) < 4e8)) [[unlikely]] {
    fields.tm_year = kUndefinedYearField;
    fields.tm_mon = fields.tm_mday = fields.tm_hour = fields.tm_min = fields.tm_sec = -1;
    fields.tm_wday = fields.tm_yday = -1;
    ms = -1;
    return;
  }
  double const whole = floorSmall(julian);
  int const jd = static_cast<int>(whole);
  Civil const date = civilOf(jd);
  int const year = static_cast<int>(date.year <= 0 ? date.year - 1 : date.year);
  int month = date.month - 1;
  int day = date.day;

  unsigned f = static_cast<unsigned>((julian - whole) * 8.64e8);  // tenths of a millisecond
  unsigned h = 0, minute = 0, second = 0;
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
  ms = static_cast<int>(f / 10 + (f % 10 >= 6));
  if (ms == 1000) [[unlikely]] {
    ms = 0;
    if (++second == 60) {
      second = 0;
      if (++minute == 60) {
        minute = 0;
        ++h;
      }
    }
  }
  int const nextDay = 12 + h >= 24;  // past midnight: the calendar day after the day number's noon
  int const hour = static_cast<int>(12 + h) - 24 * nextDay;
  int tmYear = year - 1900;
  day += nextDay;
  if (nextDay && day > 28 &&  // the month's length by the years since 1900, deliberately
      day > kCommon[month + 1] - kCommon[month] + (month == 1 && gregorianLeap(tmYear))) [[unlikely]] {
    day = 1;
    if (++month > 11) {
      month = 0;
      ++tmYear;
    }
  }
  fields.tm_year = tmYear;
  fields.tm_mon = month;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = static_cast<int>(minute);
  fields.tm_sec = static_cast<int>(second);
  fields.tm_wday = fields.tm_yday = -1;
}

}  // namespace quarn::detail::calendar
