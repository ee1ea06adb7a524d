// DateTimeLocale.cpp - day and month names, formats and the machine's zone row
//
// The names and formats come from the process's LC_TIME locale through
// glibc's wide nl_langinfo items (so any codeset works); the machine's zone
// is `tzname` after tzset (TZ honoured), matched against the zone table by
// name, then by the initials of a long name ("Eastern Standard Time" ->
// "EST"); no match gives row 28 ("UTC").
#include <quarn/value/DateTimeValue.h>

#include <langinfo.h>
#include <locale.h>

#include <cstring>
#include <ctime>
#include <cwchar>
#include <mutex>

#include "DateTimeLocale.h"

namespace quarn {

namespace detail {
namespace {

DateTimeLocale g_locale;
std::once_flag g_loaded;

BaseString<unsigned short> widen(wchar_t const *text) {
  BaseString<unsigned short> out;
  out.reserve(0);
  for (; text && *text; ++text) {
    auto c = static_cast<unsigned int>(*text);
    if (c >= 0x10000) {
      c -= 0x10000;
      out.append(static_cast<unsigned short>(0xD800 + (c >> 10)));
      out.append(static_cast<unsigned short>(0xDC00 + (c & 0x3FF)));
    } else {
      out.append(static_cast<unsigned short>(c));
    }
  }
  return out;
}

BaseString<unsigned short> item(locale_t locale, nl_item what) {
  return widen(reinterpret_cast<wchar_t const *>(nl_langinfo_l(what, locale)));
}

int matchZoneName(char const *name) {
  if (!name || !*name) return -1;
  BaseString<unsigned short> wide(name);
  int row = DateTimeValue::findTimeZone(wide.getBuffer());
  if (row >= 0) return row;
  // A long name: try the initials of its words.
  BaseString<unsigned short> initials;
  for (char const *p = name; *p; ++p)
    if (*p != ' ' && (p == name || p[-1] == ' ')) initials.append(static_cast<unsigned short>(*p));
  return initials.getLength() > 1 ? DateTimeValue::findTimeZone(initials.getBuffer()) : -1;
}

void load() {
  DateTimeLocale data;
  char const *current = setlocale(LC_TIME, nullptr);
  data.name = BaseString<unsigned short>(current ? current : "C");
  locale_t locale = newlocale(LC_TIME_MASK, current ? current : "C", static_cast<locale_t>(nullptr));
  if (!locale) locale = newlocale(LC_TIME_MASK, "C", static_cast<locale_t>(nullptr));
  for (int i = 0; i < 7; ++i) {
    data.weekdays[i] = item(locale, static_cast<nl_item>(_NL_WDAY_1 + i));
    data.weekdaysAbbr[i] = item(locale, static_cast<nl_item>(_NL_WABDAY_1 + i));
  }
  for (int i = 0; i < 12; ++i) {
    data.months[i] = item(locale, static_cast<nl_item>(_NL_WMON_1 + i));
    data.monthsAbbr[i] = item(locale, static_cast<nl_item>(_NL_WABMON_1 + i));
  }
  data.ampm[0] = item(locale, _NL_WAM_STR);
  data.ampm[1] = item(locale, _NL_WPM_STR);
  data.dateTimeFormat = item(locale, _NL_WD_T_FMT);
  data.dateFormat = item(locale, _NL_WD_FMT);
  data.timeFormat = item(locale, _NL_WT_FMT);
  freelocale(locale);

  tzset();
  int row = matchZoneName(tzname[0]);
  if (row < 0) row = matchZoneName(tzname[1]);
  data.timeZone = row < 0 ? DateTimeValue::kUtcRow : row;
  g_locale = std::move(data);
}

}  // namespace

DateTimeLocale const &dateTimeLocale() {
  std::call_once(g_loaded, load);
  return g_locale;
}

}  // namespace detail

using detail::dateTimeLocale;

void DateTimeValue::loadLocale() {
  dateTimeLocale();  // the first load, if it has not happened
  detail::load();
}

void DateTimeValue::getLocale(WString &name) {
  char const *current = setlocale(LC_TIME, nullptr);
  name = WString(current ? current : "C");
}

bool DateTimeValue::setLocale(unsigned short const *name) {
  BaseString<char> narrow;
  for (unsigned short const *p = name; p && *p; ++p) narrow.append(static_cast<char>(*p < 128 ? *p : '?'));
  if (!setlocale(LC_TIME, narrow.isNull() ? "" : narrow.getBuffer())) return false;
  loadLocale();
  return true;
}

DateTimeValue::WString const *DateTimeValue::GetLocaleWeekdays() { return dateTimeLocale().weekdays; }
DateTimeValue::WString const *DateTimeValue::GetLocaleWeekdaysAbbr() { return dateTimeLocale().weekdaysAbbr; }
DateTimeValue::WString const *DateTimeValue::GetLocaleMonths() { return dateTimeLocale().months; }
DateTimeValue::WString const *DateTimeValue::GetLocaleMonthsAbbr() { return dateTimeLocale().monthsAbbr; }
DateTimeValue::WString const *DateTimeValue::GetLocaleAMPM() { return dateTimeLocale().ampm; }
DateTimeValue::WString const &DateTimeValue::GetLocaleDateTimeFormat() { return dateTimeLocale().dateTimeFormat; }
DateTimeValue::WString const &DateTimeValue::GetLocaleDateFormat() { return dateTimeLocale().dateFormat; }
DateTimeValue::WString const &DateTimeValue::GetLocaleTimeFormat() { return dateTimeLocale().timeFormat; }
int DateTimeValue::GetLocaleTimeZoneIndex() { return dateTimeLocale().timeZone; }

double DateTimeValue::localToGMT() { return getTimeZoneRow(GetLocaleTimeZoneIndex()).dayOffset * 24; }

namespace {
struct tm now() {
  std::time_t t = std::time(nullptr);
  struct tm fields {};
  localtime_r(&t, &fields);
  return fields;
}
}  // namespace

int DateTimeValue::getCurrentYear() { return now().tm_year + 1900; }
int DateTimeValue::getCurrentMonth() { return now().tm_mon + 1; }
int DateTimeValue::getCurrentDayOfMonth() { return now().tm_mday; }
int DateTimeValue::getCurrentHour() { return now().tm_hour; }
int DateTimeValue::getCurrentMinute() { return now().tm_min; }
int DateTimeValue::getCurrentSecond() { return now().tm_sec; }
DateTimeValue::WString DateTimeValue::getCurrentTimeZone() {
  return WString(getTimeZoneRow(GetLocaleTimeZoneIndex()).name);
}
double DateTimeValue::getCurrentTimeZoneOffset() { return localToGMT(); }

}  // namespace quarn
