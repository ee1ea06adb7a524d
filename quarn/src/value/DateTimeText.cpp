// DateTimeText.cpp - the date-time value's own wcsftime and strptime, and format proposals
//
// Both work on UTF-16 units and the names of the process locale (loaded once,
// DateTimeLocale.h). Formatting writes into a caller's buffer and never
// allocates; getText formats into a stack buffer and copies into the cached
// text, whose buffer is kept. Only %c, %x and %X go through the C runtime's
// wcsftime (wchar_t, converted at the call).
#include <quarn/value/DateTimeValue.h>
#include <quarnCore/Exception.h>

#include <cwchar>
#include <ctime>
#include <vector>

#include "DateTimeLocale.h"

namespace quarn {

namespace {

using Unit = unsigned short;
using WString = BaseString<Unit>;

constexpr Unit kEmpty[1] = {0};

template <std::size_t N>
struct Literal {
  Unit units[N];
  constexpr Literal(char16_t const (&text)[N]) : units{} {
    for (std::size_t i = 0; i < N; ++i) units[i] = static_cast<Unit>(text[i]);
  }
};

constexpr Literal kFormatD(u"%m/%d/%y");
constexpr Literal kFormatR(u"%H:%M");
constexpr Literal kFormatT(u"%H:%M:%S");
constexpr Literal kFormatr(u"%I:%M:%S %p");
constexpr Literal kDefaultFormat(u"%a %b %e %T %Y");

bool isBlank(Unit c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == 0xA0; }
Unit fold(Unit c) { return c >= 'a' && c <= 'z' ? static_cast<Unit>(c - 32) : c; }

/// A bounded writer: counts what fits, remembers an overflow.
struct Out {
  Unit *p;
  Unit *end;  // the last unit, kept for the terminator
  bool overflow = false;

  void put(Unit c) {
    if (p < end)
      *p++ = c;
    else
      overflow = true;
  }
  void ascii(char const *s) {
    while (*s) put(static_cast<Unit>(static_cast<unsigned char>(*s++)));
  }
  void text(WString const &s) {
    for (unsigned int i = 0; i < s.getLength(); ++i) put(s.getBuffer()[i]);
  }
  /// printf's "%0<width>d" (pad '0') or "%<width>d" (pad ' ').
  void number(int value, int width, char pad) {
    char digits[12];
    int n = 0;
    unsigned int u = value < 0 ? 0u - static_cast<unsigned int>(value) : static_cast<unsigned int>(value);
    do {
      digits[n++] = static_cast<char>('0' + u % 10);
      u /= 10;
    } while (u);
    int const used = n + (value < 0);
    if (pad == ' ')
      for (int i = used; i < width; ++i) put(' ');
    if (value < 0) put('-');
    if (pad == '0')
      for (int i = used; i < width; ++i) put('0');
    while (n) put(static_cast<Unit>(digits[--n]));
  }
};

}  // namespace

// ---- formatting

namespace {

struct Formatter {
  DateTimeValue const &value;
  struct tm const &tm;
  bool &undefinedSeen;

  bool defined(int field) {
    if (field != -1) return true;
    undefinedSeen = true;
    return false;
  }
  void two(Out &out, int field) {
    if (defined(field)) out.number(field, 2, '0');
  }

  void runtime(Out &out, WString const &format, bool date, bool time) {
    bool const dateOk = tm.tm_year != DateTimeValue::kUndefinedYear && tm.tm_mon != -1 && tm.tm_mday != -1;
    bool const timeOk = tm.tm_hour != -1 && tm.tm_min != -1 && tm.tm_sec != -1;
    if ((date && !dateOk) || (time && !timeOk)) {
      undefinedSeen = true;
      return;
    }
    wchar_t wideFormat[256];
    unsigned int n = format.getLength() < 255 ? format.getLength() : 255;
    for (unsigned int i = 0; i < n; ++i) wideFormat[i] = static_cast<wchar_t>(format.getBuffer()[i]);
    wideFormat[n] = 0;
    struct tm fields = tm;
    fields.tm_wday = (value.getDayOfWeek() + 6) % 7;
    fields.tm_yday = value.getDayOfYear() - 1;
    wchar_t buffer[1024];
    std::size_t written = std::wcsftime(buffer, 1024, wideFormat, &fields);
    for (std::size_t i = 0; i < written; ++i) {
      auto c = static_cast<unsigned int>(buffer[i]);
      if (c >= 0x10000) {
        c -= 0x10000;
        out.put(static_cast<Unit>(0xD800 + (c >> 10)));
        out.put(static_cast<Unit>(0xDC00 + (c & 0x3FF)));
      } else {
        out.put(static_cast<Unit>(c));
      }
    }
  }

  void run(Out &out, Unit const *format) {
    for (Unit const *f = format; *f; ++f) {
      if (*f != '%') {
        out.put(*f);
        continue;
      }
      Unit const c = *++f;
      if (c == 0) {  // a lone '%' at the end stands for itself
        out.put('%');
        return;
      }
      conversion(out, c);
    }
  }

  void conversion(Out &out, Unit c) {
    int const year = tm.tm_year == DateTimeValue::kUndefinedYear ? DateTimeValue::kUndefinedYear : tm.tm_year + 1900;
    switch (c) {
      case 'a':
      case 'A': {
        int const day = value.getDayOfWeek();
        if (defined(day == 0 ? -1 : day)) {
          auto const &locale = detail::dateTimeLocale();
          out.text((c == 'a' ? locale.weekdaysAbbr : locale.weekdays)[day - 1]);
        }
        break;
      }
      case 'b':
      case 'h':
      case 'B':
        if (defined(tm.tm_mon) && tm.tm_mon >= 0 && tm.tm_mon < 12) {
          auto const &locale = detail::dateTimeLocale();
          out.text((c == 'B' ? locale.months : locale.monthsAbbr)[tm.tm_mon]);
        }
        break;
      case 'c': runtime(out, detail::dateTimeLocale().dateTimeFormat, true, true); break;
      case 'x': runtime(out, detail::dateTimeLocale().dateFormat, true, false); break;
      case 'X': runtime(out, detail::dateTimeLocale().timeFormat, false, true); break;
      case 'C':
        if (year == DateTimeValue::kUndefinedYear)
          undefinedSeen = true;
        else
          out.number(year / 100, 2, '0');
        break;
      case 'd': two(out, tm.tm_mday); break;
      case 'D': run(out, kFormatD.units); break;
      case 'e':
        if (defined(tm.tm_mday)) out.number(tm.tm_mday, 2, ' ');
        break;
      case 'H': two(out, tm.tm_hour); break;
      case 'I':
        if (defined(tm.tm_hour)) out.number(tm.tm_hour % 12 == 0 ? 12 : tm.tm_hour % 12, 2, '0');
        break;
      case 'j':
        if (defined(year == DateTimeValue::kUndefinedYear || tm.tm_mon == -1 || tm.tm_mday == -1 ? -1 : 0))
          out.number(value.getDayOfYear(), 3, '0');
        break;
      case 'm': two(out, tm.tm_mon == -1 ? -1 : tm.tm_mon + 1); break;
      case 'M': two(out, tm.tm_min); break;
      case 'n': out.put('\n'); break;
      case 'p':
        if (defined(tm.tm_hour)) out.text(detail::dateTimeLocale().ampm[tm.tm_hour >= 12 ? 1 : 0]);
        break;
      case 'r': run(out, kFormatr.units); break;
      case 'R': run(out, kFormatR.units); break;
      case 's':
        if (defined(value.getMilliseconds())) out.number(value.getMilliseconds(), 3, '0');
        break;
      case 'S': two(out, tm.tm_sec); break;
      case 't': out.put('\t'); break;
      case 'T': run(out, kFormatT.units); break;
      case 'u':
      case 'w': {
        int const day = value.getDayOfWeek();  // 1 Sunday ... 7 Saturday
        if (defined(day == 0 ? -1 : day)) out.number(c == 'w' ? day - 1 : (day + 5) % 7 + 1, 1, '0');
        break;
      }
      case 'y':
        if (year == DateTimeValue::kUndefinedYear)
          undefinedSeen = true;
        else
          out.number(((year % 100) + 100) % 100, 2, '0');
        break;
      case 'Y':
        if (year == DateTimeValue::kUndefinedYear) {
          undefinedSeen = true;
          out.ascii("****");
        } else {
          out.number(year, 4, '0');
        }
        break;
      case 'z': {
        int const hhmm = DateTimeValue::getTimeZoneRow(value.getTimeZoneIndex()).hhmm;
        out.put(hhmm < 0 ? '-' : '+');
        out.number(hhmm < 0 ? -hhmm : hhmm, 4, '0');
        break;
      }
      case 'Z': out.ascii(DateTimeValue::getTimeZoneRow(value.getTimeZoneIndex()).name); break;
      case '%': out.put('%'); break;
      case 'U': throw Exception("%%U not implemented yet");
      case 'V': throw Exception("%%V not implemented yet");
      case 'W': throw Exception("%%W not implemented yet");
      default: throw Exception("Unknown control character for wcsftime: %%%c", c < 128 ? static_cast<int>(c) : '?');
    }
  }
};

}  // namespace

std::size_t DateTimeValue::wcsftime(unsigned short *buffer, std::size_t size, unsigned short const *format,
                                    bool &undefinedSeen) const {
  if (!buffer || size == 0) return 0;
  Out out{buffer, buffer + size - 1};
  Formatter{*this, m_tm, undefinedSeen}.run(out, format ? format : kEmpty);
  if (out.overflow) {
    buffer[0] = 0;
    return 0;
  }
  *out.p = 0;
  return static_cast<std::size_t>(out.p - buffer);
}

void DateTimeValue::formatText() const {
  Unit const *format = m_format.isEmpty() ? kDefaultFormat.units : m_format.getBuffer();
  bool undefinedSeen = false;
  Unit local[256];
  std::size_t n = wcsftime(local, sizeof local / sizeof local[0], format, undefinedSeen);
  if (n == 0 && *format) {  // longer than the stack buffer (or empty): grow
    std::vector<Unit> big(1024);
    while ((n = wcsftime(big.data(), big.size(), format, undefinedSeen)) == 0 && big.size() < (1u << 24))
      big.resize(big.size() * 4);
    m_text.assign(big.data(), static_cast<unsigned int>(n));
  } else {
    m_text.assign(local, static_cast<unsigned int>(n));
  }
  m_textValid = true;
}

DateTimeValue::WString const &DateTimeValue::getText() const {
  if (!m_textValid) formatText();
  return m_text;
}

// ---- parsing

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
