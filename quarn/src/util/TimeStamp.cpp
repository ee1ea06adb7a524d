// TimeStamp.cpp - the time-stamp scanner over the C library's swscanf and mktime
#include <quarn/util/TimeStamp.h>

#include <ctime>
#include <cwchar>
#include <string>

namespace quarn::util {

namespace {

// Index of the three-letter `name` in `names`, ignoring the case of A-Z; -1 when absent.
int indexOfName(wchar_t const *name, char const *const *names, int count) {
  auto fold = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c; };
  for (int i = 0; i < count; ++i) {
    char const *candidate = names[i];
    int k = 0;
    while (k < 3 && fold(name[k]) == static_cast<wchar_t>(candidate[k])) ++k;
    if (k == 3 && name[3] == 0) return i;
  }
  return -1;
}

constexpr char const *kWeekdays[] = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
constexpr char const *kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"};

}  // namespace

long ConvertTime(unsigned short const *text) {
  if (!text || !*text) return -1;
  std::wstring wide;  // wchar_t is 32-bit here: widen each unit for the C library
  for (unsigned short const *p = text; *p; ++p) wide.push_back(static_cast<wchar_t>(*p));

  wchar_t weekday[4] = {}, month[4] = {};
  int day = 0, hours = 0, minutes = 0, seconds = 0, year = 0;
  std::swscanf(wide.c_str(), L"%3ls %3ls %d %d:%d:%d %d", weekday, month, &day, &hours, &minutes, &seconds, &year);

  if (year == 1)
    year = 1970;
  else if (year <= 1901 || year >= 2038)
    return -1;
  int const weekdayIndex = indexOfName(weekday, kWeekdays, 7);
  int const monthIndex = indexOfName(month, kMonths, 12);

  std::tm fields{};
  fields.tm_sec = seconds;
  fields.tm_min = minutes;
  fields.tm_hour = hours;
  fields.tm_mday = day;
  fields.tm_mon = monthIndex < 0 ? 0 : monthIndex;
  fields.tm_year = year - 1900;
  fields.tm_wday = weekdayIndex < 0 ? 0 : weekdayIndex;
  fields.tm_isdst = -1;
  return static_cast<long>(std::mktime(&fields));
}

}  // namespace quarn::util
