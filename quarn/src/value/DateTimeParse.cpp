// DateTimeParse.cpp - the date-time value's own strptime, format proposals and reading text
//
// Names are matched against the process locale's lists by the longest prefix,
// ignoring the case of A-Z; numbers take up to their width in digits and
// skip blanks before them. Parsing never allocates.
#include <quarn/value/DateTimeValue.h>
#include <quarnCore/Exception.h>

#include <ctime>

#include "DateTimeLocale.h"
#include "DateTimeText.h"

namespace quarn {

namespace {
using namespace detail::datetime;
}  // namespace

namespace {

struct Parser {
  struct tm &tm;
  int &ms;
  int &zone;
  int century = -1, shortYear = -1, half = -1, hour12 = -1;

  static Unit const *skipBlanks(Unit const *t) {
    while (isBlank(*t)) ++t;
    return t;
  }

  /// 1 to `digits` decimal digits within [low, high] (blanks before them skipped).
  static Unit const *number(Unit const *t, int digits, int low, int high, int &out) {
    t = skipBlanks(t);
    int value = 0, n = 0;
    while (n < digits && *t >= '0' && *t <= '9') value = value * 10 + (*t++ - '0'), ++n;
    if (n == 0 || value < low || value > high) return nullptr;
    out = value;
    return t;
  }

  /// The longest of `count` names that starts the text, ignoring case of A-Z; its index in `which`.
  static Unit const *name(Unit const *t, WString const *names, int count, int &which, unsigned int &best) {
    for (int i = 0; i < count; ++i) {
      WString const &n = names[i];
      unsigned int len = n.getLength();
      if (len == 0 || len <= best) continue;
      unsigned int k = 0;
      while (k < len && t[k] && fold(t[k]) == fold(n.getBuffer()[k])) ++k;
      if (k == len) {
        best = len;
        which = i;
      }
    }
    return t;
  }
  static Unit const *names(Unit const *t, WString const *full, WString const *abbr, int count, int &out) {
    t = skipBlanks(t);
    int which = -1;
    unsigned int best = 0;
    name(t, full, count, which, best);
    name(t, abbr, count, which, best);
    if (which < 0) return nullptr;
    out = which;
    return t + best;
  }

  static Unit const *zoneName(Unit const *t, int &out) {
    t = skipBlanks(t);
    int which = -1;
    std::size_t best = 0;
    for (int row = 0; row < DateTimeValue::kTimeZoneCount; ++row) {
      char const *n = DateTimeValue::getTimeZoneRow(row).name;
      std::size_t k = 0;
      while (n[k] && t[k] && fold(t[k]) == fold(static_cast<unsigned char>(n[k]))) ++k;
      if (!n[k] && k > best) best = k, which = row;
    }
    if (which < 0) return nullptr;
    out = which;
    return t + best;
  }

  static Unit const *zoneOffset(Unit const *t, int &out) {
    t = skipBlanks(t);
    if (*t == 'Z' || *t == 'z') {
      out = DateTimeValue::kUtcRow;
      return t + 1;
    }
    if (*t != '+' && *t != '-') return nullptr;
    bool const west = *t++ == '-';
    int hours, minutes = 0;
    Unit const *p = t;
    if (!(p[0] >= '0' && p[0] <= '9' && p[1] >= '0' && p[1] <= '9')) return nullptr;
    hours = (p[0] - '0') * 10 + (p[1] - '0');
    p += 2;
    if (*p == ':') ++p;
    if (p[0] >= '0' && p[0] <= '9' && p[1] >= '0' && p[1] <= '9') {
      minutes = (p[0] - '0') * 10 + (p[1] - '0');
      p += 2;
    } else if (p[-1] == ':') {
      return nullptr;
    }
    int const code = (west ? -1 : 1) * (hours * 100 + minutes);
    for (int row = 0; row < DateTimeValue::kTimeZoneCount; ++row)
      if (DateTimeValue::getTimeZoneRow(row).hhmm == code) {
        out = row;
        return p;
      }
    return nullptr;
  }

  Unit const *run(Unit const *t, Unit const *f) {
    for (; *f && t; ++f) {
      if (isBlank(*f)) {
        t = skipBlanks(t);
        continue;
      }
      if (*f != '%') {
        if (*t != *f) return nullptr;
        ++t;
        continue;
      }
      Unit const c = *++f;
      if (c == 0) return *t == '%' ? t + 1 : nullptr;
      t = conversion(t, c);
    }
    return t;
  }

  Unit const *conversion(Unit const *t, Unit c) {
    auto const &locale = detail::dateTimeLocale();
    int v = 0;
    switch (c) {
      case 'A':
      case 'a':
        if ((t = names(t, locale.weekdays, locale.weekdaysAbbr, 7, v))) tm.tm_wday = v;
        return t;
      case 'B':
      case 'b':
      case 'h':
        if ((t = names(t, locale.months, locale.monthsAbbr, 12, v))) tm.tm_mon = v;
        return t;
      case 'C':
        if ((t = number(t, 2, 0, 99, v))) century = v;
        return t;
      case 'c': return run(t, locale.dateTimeFormat.isNull() ? kEmpty : locale.dateTimeFormat.getBuffer());
      case 'x': return run(t, locale.dateFormat.isNull() ? kEmpty : locale.dateFormat.getBuffer());
      case 'X': return run(t, locale.timeFormat.isNull() ? kEmpty : locale.timeFormat.getBuffer());
      case 'D': return run(t, kFormatD.units);
      case 'R': return run(t, kFormatR.units);
      case 'r': return run(t, kFormatr.units);
      case 'T': return run(t, kFormatT.units);
      case 'd':
      case 'e':
        if ((t = number(t, 2, 1, 31, v))) tm.tm_mday = v;
        return t;
      case 'H':
        if ((t = number(t, 2, 0, 23, v))) tm.tm_hour = v, hour12 = -1;
        return t;
      case 'I':
        if ((t = number(t, 2, 1, 12, v))) hour12 = v;
        return t;
      case 'j':
        if ((t = number(t, 3, 1, 366, v))) tm.tm_yday = v - 1;
        return t;
      case 'M':
        if ((t = number(t, 2, 0, 59, v))) tm.tm_min = v;
        return t;
      case 'm':
        if ((t = number(t, 2, 1, 12, v))) tm.tm_mon = v - 1;
        return t;
      case 'p': {
        t = skipBlanks(t);
        int which = -1;
        unsigned int best = 0;
        name(t, locale.ampm, 2, which, best);
        if (which < 0) return nullptr;
        half = which;
        return t + best;
      }
      case 'S':
        if ((t = number(t, 2, 0, 59, v))) tm.tm_sec = v;
        return t;
      case 's':
        if ((t = number(t, 3, 0, 999, v))) ms = v;
        return t;
      case 'U':
      case 'W': return number(t, 2, 0, 53, v);
      case 'u':
        if ((t = number(t, 1, 1, 7, v))) tm.tm_wday = v % 7;
        return t;
      case 'w':
        if ((t = number(t, 1, 0, 6, v))) tm.tm_wday = v;
        return t;
      case 'Y': {
        t = skipBlanks(t);
        bool const negative = *t == '-';
        if (*t == '-' || *t == '+') ++t;
        if (*t < '0' || *t > '9') return nullptr;
        if ((t = number(t, 4, 0, 9999, v))) {
          int const year = negative ? -v : v;
          tm.tm_year = year == DateTimeValue::kUndefinedYear ? year : year - 1900;
          century = shortYear = -1;
        }
        return t;
      }
      case 'y':
        if ((t = number(t, 2, 0, 99, v))) shortYear = v;
        return t;
      case 'Z': return zoneName(t, zone);
      case 'z': return zoneOffset(t, zone);
      case 'n':
      case 't': return skipBlanks(t);
      case '%': return *t == '%' ? t + 1 : nullptr;
      default: return nullptr;
    }
  }

  void finish() {
    if (shortYear >= 0)
      tm.tm_year = (century >= 0 ? century * 100 + shortYear : (shortYear < 70 ? 2000 : 1900) + shortYear) - 1900;
    else if (century >= 0)
      tm.tm_year = century * 100 - 1900;
    if (hour12 >= 0) tm.tm_hour = half < 0 ? hour12 : hour12 % 12 + (half == 1 ? 12 : 0);
  }
};

}  // namespace

unsigned short const *DateTimeValue::strptime(unsigned short const *text, unsigned short const *format,
                                              struct tm *fields, int &ms, int &zone) {
  struct tm local {};
  struct tm &tm = fields ? *fields : local;
  tm = {};
  tm.tm_year = kUndefinedYear;
  tm.tm_mon = tm.tm_mday = tm.tm_hour = tm.tm_min = tm.tm_sec = tm.tm_wday = tm.tm_yday = tm.tm_isdst = -1;
  ms = -1;
  zone = -1;
  if (!text) return nullptr;
  Parser parser{tm, ms, zone};
  Unit const *end = parser.run(text, format ? format : kEmpty);
  if (!end) return nullptr;
  parser.finish();
  return end;
}

namespace {

constexpr Literal kIso1(u"%Y-%m-%dT%H:%M:%S.%s%z");
constexpr Literal kIso2(u"%Y-%m-%dT%H:%M:%S.%s");
constexpr Literal kIso3(u"%Y-%m-%dT%H:%M:%S%z");
constexpr Literal kIso4(u"%Y-%m-%dT%H:%M:%S");
constexpr Literal kIso5(u"%Y-%m-%dT%H:%M%z");
constexpr Literal kIso6(u"%Y-%m-%dT%H:%M");
constexpr Literal kIso7(u"%Y-%m-%d %H:%M:%S.%s");
constexpr Literal kIso8(u"%Y-%m-%d %H:%M:%S");
constexpr Literal kIso9(u"%Y-%m-%d %H:%M");
constexpr Literal kIso10(u"%Y-%m-%d");
constexpr Literal kIso11(u"%Y%m%dT%H%M%S");
constexpr Literal kCompact1(u"%Y%m%d");
constexpr Literal kCompact2(u"%Y%m");
constexpr Literal kTime1(u"%H:%M:%S");
constexpr Literal kTime2(u"%H:%M");
constexpr Literal kTime3(u"%I:%M:%S %p");
constexpr Literal kTime4(u"%I:%M %p");
constexpr Literal kUs1(u"%m/%d/%y");
constexpr Literal kUs2(u"%m/%d/%Y");
constexpr Literal kZoned(u"%a %b %e %T %Z %Y");
constexpr Literal kLong1(u"%d %B %Y");
constexpr Literal kLong2(u"%B %d, %Y");

constexpr Unit const *kCandidates[] = {
    kIso1.units,     kIso2.units,     kIso3.units,  kIso4.units,  kIso5.units, kIso6.units, kIso7.units,
    kIso8.units,     kIso9.units,     kIso10.units, kIso11.units, kCompact1.units, kCompact2.units,
    kTime1.units,    kTime2.units,    kTime3.units, kTime4.units, kUs1.units,  kUs2.units,  kDefaultFormat.units,
    kZoned.units,    kLong1.units,    kLong2.units};

/// Whether `format` reads the whole of `text` (trailing blanks allowed).
bool readsWhole(Unit const *text, Unit const *format) {
  struct tm fields;
  int ms, zone;
  Unit const *end = DateTimeValue::strptime(text, format, &fields, ms, zone);
  if (!end) return false;
  while (isBlank(*end)) ++end;
  return *end == 0;
}

}  // namespace

unsigned short const *DateTimeValue::proposeFormat(unsigned short const *text) {
  if (!text || !*text) return nullptr;
  for (Unit const *candidate : kCandidates)
    if (readsWhole(text, candidate)) return candidate;
  return nullptr;
}

DateTimeValue::WString DateTimeValue::proposeLocaleFormat(unsigned short const *text) {
  if (!text || !*text) return WString();
  auto const &locale = detail::dateTimeLocale();
  for (WString const *format : {&locale.dateTimeFormat, &locale.dateFormat, &locale.timeFormat})
    if (!format->isEmpty() && readsWhole(text, format->getBuffer())) return *format;
  return WString(proposeFormat(text));
}

void DateTimeValue::set(unsigned short const *text, unsigned short const *format) {
  if (!text) text = kEmpty;
  Unit const *chosen = format && *format ? format : proposeFormat(text);
  if (!chosen) [[unlikely]]
    throw Exception("No date-time format fits \"%ls\"", text);
  struct tm fields;
  int ms, zone;
  Unit const *end = strptime(text, chosen, &fields, ms, zone);
  while (end && isBlank(*end)) ++end;
  if (!end || *end) [[unlikely]]
    throw Exception("Cannot read \"%ls\" as a date-time with format \"%ls\"", text, chosen);
  m_format = chosen;
  m_text = text;
  m_tm = fields;
  m_ms = ms;
  m_julianValid = false;
  if (zone >= 0) {
    m_timeZone = zone;
    m_tm.tm_isdst = 0;
  } else {
    zoneStep(kUtcRow);
  }
  m_textValid = true;
}

}  // namespace quarn
