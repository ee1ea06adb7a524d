// DateTimeFormat.cpp - the date-time value's own wcsftime and its cached text
//
// It works on UTF-16 units and the names of the process locale (loaded once,
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
#include "DateTimeText.h"

namespace quarn {

namespace {

using namespace detail::datetime;

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

namespace {

/// "%a %b %e %T %Y" written straight out, when every field it shows is defined
/// (the common case: no format walk, one copy).
bool defaultText(DateTimeValue const &value, struct tm const &tm, WString &text) {
  int const year = tm.tm_year + 1900;
  if (tm.tm_year == DateTimeValue::kUndefinedYear || year < 0 || year > 9999 || tm.tm_mon < 0 || tm.tm_mon > 11 ||
      tm.tm_mday < 1 || tm.tm_mday > 31 || tm.tm_hour < 0 || tm.tm_hour > 23 || tm.tm_min < 0 || tm.tm_min > 59 ||
      tm.tm_sec < 0 || tm.tm_sec > 59)
    return false;
  int const day = value.getDayOfWeek();
  if (day == 0) return false;
  auto const &locale = detail::dateTimeLocale();
  WString const &dayName = locale.weekdaysAbbr[day - 1], &monthName = locale.monthsAbbr[tm.tm_mon];
  if (dayName.getLength() > 32 || monthName.getLength() > 32) return false;
  Unit buffer[96];
  Unit *p = buffer;
  auto two = [&p](int n) {
    p[0] = static_cast<Unit>('0' + n / 10);
    p[1] = static_cast<Unit>('0' + n % 10);
    p += 2;
  };
  for (unsigned int i = 0; i < dayName.getLength(); ++i) *p++ = dayName.getBuffer()[i];
  *p++ = ' ';
  for (unsigned int i = 0; i < monthName.getLength(); ++i) *p++ = monthName.getBuffer()[i];
  *p++ = ' ';
  if (tm.tm_mday < 10) {
    p[0] = ' ';
    p[1] = static_cast<Unit>('0' + tm.tm_mday);
    p += 2;
  } else {
    two(tm.tm_mday);
  }
  *p++ = ' ';
  two(tm.tm_hour);
  *p++ = ':';
  two(tm.tm_min);
  *p++ = ':';
  two(tm.tm_sec);
  *p++ = ' ';
  two(year / 100);
  two(year % 100);
  text.assign(buffer, static_cast<unsigned int>(p - buffer));
  return true;
}

}  // namespace

void DateTimeValue::formatText() const {
  if (m_format.isEmpty() && defaultText(*this, m_tm, m_text)) {
    m_textValid = true;
    return;
  }
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

}  // namespace quarn
