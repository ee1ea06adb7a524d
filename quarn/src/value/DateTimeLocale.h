// DateTimeLocale.h - the class-wide locale data of DateTimeValue, loaded once
//
// localeData() loads on first use (std::call_once, so two threads racing to
// the first date-time text both see complete data) and is read-only after
// that; DateTimeValue::loadLocale reloads on request.
#pragma once

#include <quarnCore/BaseString.h>

namespace quarn::detail {

struct DateTimeLocale {
  BaseString<unsigned short> name;
  BaseString<unsigned short> weekdays[7], weekdaysAbbr[7];  // Sunday first
  BaseString<unsigned short> months[12], monthsAbbr[12];
  BaseString<unsigned short> ampm[2];
  BaseString<unsigned short> dateTimeFormat, dateFormat, timeFormat;
  int timeZone = -1;  // the machine zone's row
};

/// The loaded data (loading it on first use).
DateTimeLocale const &dateTimeLocale();

}  // namespace quarn::detail
