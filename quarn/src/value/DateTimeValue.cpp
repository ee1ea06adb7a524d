// DateTimeValue.cpp - fields, whole settings, zones, arithmetic, order and payload of the date-time value
#include <quarn/value/ByteStream.h>
#include <quarn/value/DateTimeValue.h>
#include <quarnCore/Exception.h>

#include <chrono>
#include <climits>
#include <cmath>
#include <ctime>
#include <utility>

#include "DateTimeLocale.h"
#include "SingleElement.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(DateTimeValue);

namespace {

constexpr unsigned short kEmpty[1] = {0};
constexpr double kSecond = 1.1574074074074073e-5;       // 1/86400
constexpr double kMillisecond = 1.1574074074074074e-8;  // 1/86400000
constexpr double kHalfMillisecond = 5.787037037037037e-9;

void checkRange(int value, int low, int high, char const *message) {
  if ((value < low || value > high) && value != -1) [[unlikely]]
    throw Exception(message, value);
}
constexpr char kDayMessage[] = "Tried to set a day of month outside of range [1-31]: %d";
constexpr char kMonthMessage[] = "Tried to set a month outside of range [1-12]: %d";
constexpr char kHourMessage[] = "Tried to set an hour outside of range [0-23]: %d";
constexpr char kMinuteMessage[] = "Tried to set a minute outside of range [0-59]: %d";
constexpr char kSecondMessage[] = "Tried to set a second outside of range [0-59]: %d";
constexpr char kMsMessage[] = "Tried to set a millisecond outside of range [0-999]: %d";

[[noreturn]] void throwFieldIndex(int field) {
  throw Exception("Illegal field index %d.  Legal values are: 1:Year 2:Month 3:Day 4:Hour 5:Minute 6:Second 7:Millisecond",
                  field);
}

/// A double as an int: truncated, saturating, NaN as INT_MIN.
int saturate(double x) {
  if (!(x >= static_cast<double>(INT_MIN) && x < 2147483648.0)) return x > 0 ? INT_MAX : INT_MIN;
  return static_cast<int>(x);
}

/// A year as tm_year (years since 1900), keeping the undefined marker; saturating.
int tmYearOf(int year) { return year == DateTimeValue::kUndefinedYear ? year : year < INT_MIN + 1900 ? INT_MIN : year - 1900; }

/// The largest tm_year whose year number (tm_year + 1900) is still an int.
constexpr int kMaxTmYear = INT_MAX - 1900;

/// A tm_year, saturating.
int clampTmYear(long long x) { return x < INT_MIN ? INT_MIN : x > kMaxTmYear ? kMaxTmYear : static_cast<int>(x); }

void undefine(struct tm &fields) {
  fields = {};
  fields.tm_year = DateTimeValue::kUndefinedYear;
  fields.tm_mon = fields.tm_mday = fields.tm_hour = fields.tm_min = fields.tm_sec = -1;
  fields.tm_wday = fields.tm_yday = fields.tm_isdst = -1;
}

}  // namespace

DateTimeValue::DateTimeValue()
    : m_ms(-1), m_julian(0.0), m_timeZone(kUtcRow), m_julianValid(false), m_textValid(false) {
  undefine(m_tm);
}

DateTimeValue::DateTimeValue(DateTimeValue const &other) : Glue(other) { *this = other; }

DateTimeValue::~DateTimeValue() = default;

DateTimeValue &DateTimeValue::operator=(DateTimeValue const &other) {
  if (this == &other) return *this;
  m_julian = other.m_julian;
  m_julianValid = other.m_julianValid;
  m_text = other.m_text;
  m_format = other.m_format;
  m_textValid = other.m_textValid;
  m_tm = other.m_tm;
  m_ms = other.m_ms;
  m_timeZone = other.m_timeZone;
  return *this;
}

// ---- fields

void DateTimeValue::setYear(int year) {
  m_tm.tm_year = tmYearOf(year);
  changed();
}
void DateTimeValue::setMonth(int month) {
  checkRange(month, 1, 12, kMonthMessage);
  m_tm.tm_mon = month == -1 ? -1 : month - 1;
  changed();
}
void DateTimeValue::setDayOfMonth(int day) {
  checkRange(day, 1, 31, kDayMessage);
  m_tm.tm_mday = day;
  changed();
}
void DateTimeValue::setHour(int hour) {
  checkRange(hour, 0, 23, kHourMessage);
  m_tm.tm_hour = hour;
  changed();
}
void DateTimeValue::setMinute(int minute) {
  checkRange(minute, 0, 59, kMinuteMessage);
  m_tm.tm_min = minute;
  changed();
}
void DateTimeValue::setSecond(int second) {
  checkRange(second, 0, 59, kSecondMessage);
  m_tm.tm_sec = second;
  changed();
}
void DateTimeValue::setMilliseconds(int ms) {
  checkRange(ms, 0, 999, kMsMessage);
  m_ms = ms;
  changed();
}

int DateTimeValue::getYear() const { return m_tm.tm_year == kUndefinedYear ? kUndefinedYear : m_tm.tm_year + 1900; }
int DateTimeValue::getMonth() const { return m_tm.tm_mon == -1 ? -1 : m_tm.tm_mon + 1; }
int DateTimeValue::getDayOfMonth() const { return m_tm.tm_mday; }

bool DateTimeValue::isFieldDefined(int field) const {
  switch (field) {
    case Year: return m_tm.tm_year != kUndefinedYear;
    case Month: return m_tm.tm_mon != -1;
    case Day: return m_tm.tm_mday != -1;
    case Hour: return m_tm.tm_hour != -1;
    case Minute: return m_tm.tm_min != -1;
    case Second: return m_tm.tm_sec != -1;
    case Millisecond: return m_ms != -1;
    default: throwFieldIndex(field);
  }
}

void DateTimeValue::setFieldUndefined(int field) {
  switch (field) {
    case Year: m_tm.tm_year = kUndefinedYear; break;
    case Month: m_tm.tm_mon = -1; break;
    case Day: m_tm.tm_mday = -1; break;
    case Hour: m_tm.tm_hour = -1; break;
    case Minute: m_tm.tm_min = -1; break;
    case Second: m_tm.tm_sec = -1; break;
    case Millisecond: m_ms = -1; break;
    default: throwFieldIndex(field);
  }
  changed();
}

void DateTimeValue::setUndefined(bool useNow) {
  bool const dateMissing = m_tm.tm_year == kUndefinedYear || m_tm.tm_mon == -1 || m_tm.tm_mday == -1;
  if (useNow && dateMissing) {
    std::time_t t = std::time(nullptr);
    struct tm local {};
    localtime_r(&t, &local);
    if (m_tm.tm_year == kUndefinedYear) m_tm.tm_year = local.tm_year;
    if (m_tm.tm_mon == -1) m_tm.tm_mon = local.tm_mon;
    if (m_tm.tm_mday == -1) m_tm.tm_mday = local.tm_mday;
  } else if (!useNow) {
    setUndefinedFields();
  }
  if (m_tm.tm_hour == -1) m_tm.tm_hour = 12;
  if (m_tm.tm_min == -1) m_tm.tm_min = 0;
  if (m_tm.tm_sec == -1) m_tm.tm_sec = 0;
  if (m_ms == -1) m_ms = 0;
  m_tm.tm_wday = m_tm.tm_yday = m_tm.tm_isdst = -1;
  changed();
}

void DateTimeValue::setUndefinedFields() noexcept {
  if (m_tm.tm_year == kUndefinedYear) m_tm.tm_year = -4713 - 1900;
  if (m_tm.tm_mon == -1) m_tm.tm_mon = 0;
  if (m_tm.tm_mday == -1) m_tm.tm_mday = 1;
}

// ---- whole settings

void DateTimeValue::zoneStep(int row) {
  m_tm.tm_isdst = 0;
  m_timeZone = row;
  TimeZoneRow const &r = getTimeZoneRow(row);
  if (r.rule == 0) return;
  bool const dst = IsDST();
  m_tm.tm_isdst = dst ? 1 : 0;
  if (!dst && r.toStandard != 0)
    m_timeZone += r.toStandard;
  else if (dst && r.toDaylight != 0)
    m_timeZone += r.toDaylight;
}

void DateTimeValue::set(int year, int month, int day, int hour, int minute, int second, int ms) {
  checkRange(month, 1, 12, kMonthMessage);
  checkRange(day, 1, 31, kDayMessage);
  checkRange(hour, 0, 23, kHourMessage);
  checkRange(minute, 0, 59, kMinuteMessage);
  checkRange(second, 0, 59, kSecondMessage);
  m_tm.tm_year = tmYearOf(year);
  m_tm.tm_mon = month == -1 ? -1 : month - 1;
  m_tm.tm_mday = day;
  m_tm.tm_hour = hour;
  m_tm.tm_min = minute;
  m_tm.tm_sec = second;
  m_tm.tm_wday = m_tm.tm_yday = -1;
  m_ms = ms;
  changed();
  zoneStep(kUtcRow);
}

void DateTimeValue::setTime(int hour, int minute, int second, int ms) {
  checkRange(hour, 0, 23, kHourMessage);
  checkRange(minute, 0, 59, kMinuteMessage);
  checkRange(second, 0, 59, kSecondMessage);
  set(kUndefinedYear, -1, -1, hour, minute, second, ms);
}

void DateTimeValue::set(struct tm const &fields, int ms) {
  checkRange(fields.tm_mon == -1 ? -1 : fields.tm_mon + 1, 1, 12, kMonthMessage);
  checkRange(fields.tm_mday, 1, 31, kDayMessage);
  checkRange(fields.tm_hour, 0, 23, kHourMessage);
  checkRange(fields.tm_min, 0, 59, kMinuteMessage);
  checkRange(fields.tm_sec, 0, 59, kSecondMessage);
  int const isdst = m_tm.tm_isdst;
  m_tm = fields;
  m_tm.tm_isdst = isdst;
  if (m_tm.tm_year > kMaxTmYear) m_tm.tm_year = kMaxTmYear;
  m_ms = ms;
  changed();
  zoneStep(kUtcRow);
}

void DateTimeValue::setJulian(double julian) {
  zoneStep(kUtcRow);
  int ms;
  julianToTM(julian + getTimeZoneRow(m_timeZone).dayOffset, m_tm, ms);
  m_ms = ms;
  m_julian = julian;
  m_julianValid = true;
  m_textValid = false;
}

void DateTimeValue::set(long seconds, int ms) {
  if (seconds < 0) [[unlikely]]
    throw Exception("Cannot perform calculation with negative seconds since 1 January, 1970: %d", static_cast<int>(seconds));
  std::time_t t = static_cast<std::time_t>(seconds);
  struct tm local {};
  localtime_r(&t, &local);
  m_tm = local;
  m_ms = ms;
  changed();
  zoneStep(kUtcRow);
  double julian;
  TMToJulian(m_tm, m_ms, julian);
  m_julian = julian + getTimeZoneRow(m_timeZone).dayOffset;
  m_julianValid = true;
}

void DateTimeValue::setSecondsSince1970(int seconds, int ms) { set(static_cast<long>(seconds), ms); }

void DateTimeValue::setToLocalDateTime() {
  auto const now = std::chrono::system_clock::now();
  auto const ms = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
  std::time_t t = static_cast<std::time_t>(ms / 1000);
  struct tm local {};
  localtime_r(&t, &local);
  set(local, static_cast<int>(ms % 1000));
}

// ---- reading

void DateTimeValue::makeJulianValid() const {
  if (m_julianValid) return;
  double julian;
  TMToJulian(m_tm, m_ms, julian);
  m_julian = julian + getTimeZoneRow(m_timeZone).dayOffset;
  m_julianValid = true;
}

double DateTimeValue::getJulian() const {
  makeJulianValid();
  return m_julian;
}

int DateTimeValue::getSecondsSince1970() const {
  DateTimeValue filled(*this);
  filled.setUndefined(false);
  struct tm fields = filled.m_tm;
  fields.tm_isdst = -1;
  return saturate(static_cast<double>(mktime(&fields)));
}

int DateTimeValue::getDayOfWeek() const {
  if (m_tm.tm_year == kUndefinedYear || m_tm.tm_mon == -1 || m_tm.tm_mday == -1) return 0;
  double const x = getJulian() + getTimeZoneRow(m_timeZone).dayOffset - 0.5 + kHalfMillisecond;
  if (!(std::fabs(x) < 4e8)) return 0;
  long long const k = static_cast<long long>(detail::calendar::floorSmall(x)) + 2;
  return static_cast<int>((k % 7 + 7) % 7) + 1;
}

int DateTimeValue::getDayOfYear() const {
  struct tm first = m_tm;
  first.tm_mon = 0;
  first.tm_mday = 1;
  double j1;
  TMToJulian(first, 0, j1);
  return saturate(std::floor(getJulian() - (j1 - getTimeZoneRow(m_timeZone).dayOffset) + kHalfMillisecond)) + 1;
}

int DateTimeValue::getWeekOfYear(int &weekYear) const {
  auto iso = [](int dayOfWeek) { return (dayOfWeek + 5) % 7 + 1; };  // Sunday 1 -> 7, Monday 2 -> 1
  DateTimeValue filled(*this);
  filled.setUndefined(false);
  int const year = filled.getYear();
  DateTimeValue january;
  january.set(year, 1, 1, filled.getHour(), filled.getMinute(), filled.getSecond(), 0);
  int const w1 = iso(january.getDayOfWeek());
  int const wd = iso(filled.getDayOfWeek());
  int const doy = filled.getDayOfYear();
  if (doy <= 8 - w1 && w1 > 4) {
    weekYear = year - 1;
    return (w1 == 5 || (w1 == 6 && isLeapYear(year - 1))) ? 53 : 52;
  }
  weekYear = year;
  if ((isLeapYear(year) ? 366 : 365) - doy < 4 - wd) {
    weekYear = year + 1;
    return 1;
  }
  int week = (doy + 6 + w1 - wd) / 7;
  return w1 > 4 ? week - 1 : week;
}

namespace {
constexpr char const *kEnglishDays[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr char const *kEnglishMonths[12] = {"January", "February", "March",     "April",   "May",      "June",
                                            "July",    "August",   "September", "October", "November", "December"};
}  // namespace

DateTimeValue::WString DateTimeValue::getDayOfWeekText(bool fromLocale, bool abbreviated) const {
  int const day = getDayOfWeek();
  if (day == 0) return WString("");
  if (fromLocale) return (abbreviated ? GetLocaleWeekdaysAbbr() : GetLocaleWeekdays())[day - 1];
  WString name(kEnglishDays[day - 1]);
  if (abbreviated) name.resize(3);
  return name;
}

DateTimeValue::WString DateTimeValue::getMonthText(bool fromLocale, bool abbreviated) const {
  int const month = m_tm.tm_mon;
  if (month < 0 || month > 11) return WString("");
  if (fromLocale) return (abbreviated ? GetLocaleMonthsAbbr() : GetLocaleMonths())[month];
  WString name(kEnglishMonths[month]);
  if (abbreviated) name.resize(3);
  return name;
}

bool DateTimeValue::IsDST() const {
  int const rule = getTimeZoneRow(GetLocaleTimeZoneIndex()).rule;
  if (rule == 0) return false;
  long long const y = m_tm.tm_year == kUndefinedYear ? -4713 : m_tm.tm_year + 1900LL;
  int const mo = m_tm.tm_mon == -1 ? 1 : m_tm.tm_mon + 1;
  int const d = m_tm.tm_mday == -1 ? 1 : m_tm.tm_mday;
  if (rule == 1) {
    if (y < 1960) return false;
    if (y > 2006) {
      if (mo < 3 || mo > 11) return false;
      if (mo == 3) return d >= 14 - (5 * y / 4 + 1) % 7;
      if (mo == 11) return d < 7 - (5 * y / 4 + 1) % 7;
      return true;
    }
    if (mo < 4 || mo > 10) return false;
    if (mo == 4) return d >= (6 * y - y / 4 + 2) % 7 + 1;
    if (mo == 10) return d < 31 - (5 * y / 4 + 1) % 7;
    return true;
  }
  if (mo < 3 || mo > 10) return false;
  if (mo == 3) return d >= 31 - (5 * y / 4 + 4) % 7;
  if (mo == 10) return d < 31 - (5 * y / 4 + 1) % 7;
  return true;
}

// ---- zones and format

DateTimeValue::WString DateTimeValue::getTimeZone() const { return WString(getTimeZoneRow(m_timeZone).name); }

double DateTimeValue::getTimeZoneOffset() const { return getTimeZoneRow(m_timeZone).dayOffset * 24; }

void DateTimeValue::setTimeZone(WString const &name, bool convert) {
  int const row = findTimeZone(name.getBuffer());
  if (row < 0) [[unlikely]]
    throw Exception("\"%ls\" is not a valid time zone abbreviation", name.isNull() ? kEmpty : name.getBuffer());
  if (convert) {
    setUndefined(false);
    makeJulianValid();
    setJulian(m_julian - getTimeZoneRow(row).dayOffset);
  }
  if (row != m_timeZone) changed();
  zoneStep(row);
}

void DateTimeValue::setTimeZoneOffset(double hours) {
  double const magnitude = std::fabs(hours) < 100 ? std::fabs(hours) : 100;  // no row is that far off
  int const h = saturate(std::floor(magnitude));
  int const m = saturate((magnitude - std::floor(magnitude)) * -60);
  int const code = hours >= 0 ? h * 100 - m : m - h * 100;
  int row = kUtcRow;
  for (int r = 0; r < kTimeZoneCount; ++r)
    if (getTimeZoneRow(r).hhmm == code) {
      row = r;
      break;
    }
  if (row != m_timeZone) changed();
  zoneStep(row);
}

void DateTimeValue::setDateTimeFormat(unsigned short const *format) {
  WString next(format);
  unsigned int const n = next.getLength(), old = m_format.getLength();
  bool same = n == old;
  for (unsigned int i = 0; same && i < n; ++i) same = next.getBuffer()[i] == m_format.getBuffer()[i];
  if (same) return;
  m_format = std::move(next);
  m_textValid = false;
}

// ---- arithmetic

void DateTimeValue::addYears(int years) {
  setUndefined(false);
  m_tm.tm_year = clampTmYear(static_cast<long long>(m_tm.tm_year) + years);
  changed();
}

void DateTimeValue::addMonths(int months) {
  setUndefined(false);
  long long month = static_cast<long long>(m_tm.tm_mon) + months;
  long long years = month >= 0 ? month / 12 : -((11 - month) / 12);
  m_tm.tm_mon = static_cast<int>(month - years * 12);
  m_tm.tm_year = clampTmYear(m_tm.tm_year + years);
  changed();
}

void DateTimeValue::addSeconds(double seconds) {
  if (seconds == 0) return;
  setUndefined(false);
  makeJulianValid();
  setJulian(m_julian + seconds * kSecond);
}
void DateTimeValue::addDays(double days) { addSeconds(days * 86400); }
void DateTimeValue::addHours(double hours) { addSeconds(hours * 3600); }
void DateTimeValue::addMinutes(double minutes) { addSeconds(minutes * 60); }
void DateTimeValue::addMilliseconds(int ms) {
  if (ms == 0) return;
  setUndefined(false);
  makeJulianValid();
  setJulian(m_julian + ms * kMillisecond);
}

// ---- Value contract

unsigned int DateTimeValue::hash() const { return static_cast<unsigned int>(saturate(getJulian())); }

void DateTimeValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << DATETIME_SERIALIZE_VERSION << m_julianValid;
  if (m_julianValid) out << m_julian;
  out << m_textValid;
  if (m_textValid) out << m_text;
  out << m_format;
  out << m_tm.tm_hour << m_tm.tm_isdst << m_tm.tm_mday << m_tm.tm_min << m_tm.tm_mon << m_tm.tm_sec << m_tm.tm_yday
      << m_tm.tm_year << m_tm.tm_wday << m_ms << m_timeZone;
}

namespace {
void checkRead(int value, int low, int high, char const *what) {
  if (value < low || value > high) [[unlikely]]
    throw Exception("Invalid %hs %d in DateTimeValue deserialization", what, value);
}
}  // namespace

void DateTimeValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int version;
  in >> version;
  if (version != DATETIME_SERIALIZE_VERSION) [[unlikely]]
    throw Exception("Incompatible version '%i' in DateTimeValue deserialization", version);
  bool julianValid, textValid;
  double julian = 0.0;
  WString text, format;  // nothing allocated unless the stream holds them
  in >> julianValid;
  if (julianValid) in >> julian;
  in >> textValid;
  if (textValid) in >> text;
  in >> format;
  struct tm fields {};
  int ms, zone;
  in >> fields.tm_hour >> fields.tm_isdst >> fields.tm_mday >> fields.tm_min >> fields.tm_mon >> fields.tm_sec >>
      fields.tm_yday >> fields.tm_year >> fields.tm_wday >> ms >> zone;
  checkRead(fields.tm_hour, -1, 23, "hour");
  checkRead(fields.tm_mday, -1, 31, "day");
  checkRead(fields.tm_min, -1, 59, "minute");
  checkRead(fields.tm_mon, -1, 11, "month");
  checkRead(fields.tm_sec, -1, 60, "second");
  checkRead(ms, -1, 999, "millisecond");
  checkRead(zone, 0, kTimeZoneCount - 1, "time zone row");
  checkRead(fields.tm_year, INT_MIN, kMaxTmYear, "year");
  if (textValid)
    m_text = std::move(text);
  else
    m_text.resize(0);  // empty, in the storage it kept: the only step that may fail, and it comes first
  m_julianValid = julianValid;
  m_julian = julian;
  m_textValid = textValid;
  m_format = std::move(format);
  m_tm = fields;
  m_ms = ms;
  m_timeZone = zone;
}

int DateTimeValue::getInteger() const { return saturate(std::floor(getJulian())); }
bool DateTimeValue::getBoolean() const { return getJulian() == 0.0; }
double DateTimeValue::getDouble() const { return getJulian(); }

void DateTimeValue::getString(WString &out) const { out = getText(); }

void DateTimeValue::getArray(Array<WString> &out) const { detail::singleElement(*this, out); }
void DateTimeValue::getArray(Array<double> &out) const { detail::singleElement(*this, out); }
void DateTimeValue::getArray(Array<int> &out) const { detail::singleElement(*this, out); }
void DateTimeValue::getArray(Array<bool> &out) const { detail::singleElement(*this, out); }

void DateTimeValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

int DateTimeValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  double const theirs = static_cast<DateTimeValue const &>(other).m_julian;
  if (m_julian > theirs) return -1;
  if (m_julian < theirs) return 1;
  return 0;
}

bool DateTimeValue::getXMLText(WString &text, WString &extra) const {
  getString(text);
  extra = m_format.isNull() ? WString("") : m_format;
  return true;
}

void DateTimeValue::setFromXMLText(WString const &text, WString const &extra) {
  set(text.isNull() ? kEmpty : text.getBuffer(), extra.getBuffer());
}

void DateTimeValue::clear() {
  undefine(m_tm);
  m_ms = -1;
  m_julian = 0.0;
  m_text.empty();
  m_timeZone = kUtcRow;
  m_format.setNull();
  m_julianValid = m_textValid = false;
}

void DateTimeValue::onDeactivate() {
  if (m_text.getCapacity() > 1000) m_text.setNull();
  if (m_format.getCapacity() > 1000) m_format.setNull();
}

}  // namespace quarn
