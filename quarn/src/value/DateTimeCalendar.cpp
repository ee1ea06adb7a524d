// DateTimeCalendar.cpp - leap years and month lengths (the conversions are inline in DateTimeCalendar.h)
#include <quarn/value/DateTimeValue.h>
#include <quarnCore/Exception.h>

namespace quarn {

bool DateTimeValue::isLeapYear(int year) { return detail::calendar::gregorianLeap(year); }

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

}  // namespace quarn
