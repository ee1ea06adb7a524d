// DateTimeValue.h - a record property holding a calendar date, a time of day and a time zone
//
// A date-time keeps two representations and converts lazily between them:
// the broken-down calendar fields (a C `struct tm`, in the value's own zone,
// plus milliseconds), any of which may be undefined, and a julian day number
// (a double; a whole number falls on noon), each with a validity flag. Every
// reader of the julian (getJulian, getDouble, ==, <, hash ...) first makes it
// valid: julian = TMToJulian(fields) + the day offset of the zone row.
//
// Undefined markers (also on the wire): the year field holds -9999 itself
// (not -9999 - 1900); every other calendar field and the milliseconds hold
// -1. A new or cleared value has every field undefined, zone row 28 ("UTC"),
// an empty format and both flags clear; once its undefined fields are filled
// it stands for 1 January -4713 at noon (julian 1.0 by the formula below).
//
// The zone table has 217 rows (getTimeZoneRow): 67 abbreviations, 75 Windows
// standard-time names and the 75 matching daylight-time names. A row's day
// offset is the MAGNITUDE of its hhmm offset (EST, -500, is +5/24), and
// getTimeZoneOffset reports that magnitude in hours: zones are labels with a
// size, not signed offsets. Names are matched ignoring the case of A-Z; where a
// name stands twice ("BT", "HST", "NST", "BST", "GST") the first row wins.
//
// Every whole setting (set(...) in each form, setTime, setJulian,
// setSecondsSince1970, set(text, format) when the text named no zone) puts the
// value in row 28 with isdst 0; setTimeZone / setTimeZoneOffset then choose
// another row, and for a row with a daylight rule step to its partner row by
// isDST(), which follows the rule of the MACHINE's zone row (from `tzname`
// after tzset, so TZ is honoured), by date only.
//
// Calendar: TMToJulian is the classic truncating formula, so before the year 1
// it is a day off, and 1 January and February of 1700, 1800, 1900 and 2100
// land one day early (1900-01-01 and 1899-12-31 give the same number).
// julianToTM gives the true date of floor(jd): the Julian calendar below
// 2299160 (JD 0 is 1 January -4713), the Gregorian from 2299160 (14 October
// 1582) on, no year zero. Its time of day follows strict comparisons, rounds
// milliseconds up from six tenths, and checks the month end with the years
// since 1900 (so 2000-02-29 after midnight reads as 1 March).
//
// Text: the value's own wcsftime and strptime (see below) with the names of
// the process's LC_TIME locale, loaded once on first use (thread-safe); the
// default format is "%a %b %e %T %Y". getText caches its text.
//
// Order: ==, <, ... compare valid julians. compare() compares the STORED
// julians without making them valid and with the sign reversed (-1 when this
// one is later; 0 also for NaN); against another class it orders by class
// name. hash() is the valid julian truncated to 32 bits.
//
// Payload (stream version independent): 04 (version 1); julian-valid byte;
// the julian as a stream double when valid; text-valid byte; the text when
// valid; the format string; then stream ints hour, isdst, day, minute, month
// (0-11), second, day of year, tm_year (or -9999), weekday, milliseconds,
// zone row. 2000-01-01 12:00:00.000 UTC, set with set(...), julian made valid:
//   04 | 01 | 02 00 00 00 80 2C B4 42 41 | 00 | 00 (no format) |
//   30 00 04 00 00 00 (12h, isdst 0, day 1, 0 min, January, 0 s) |
//   FC (day of year -1) 01 64 (tm_year 100) FC (weekday -1) 00 (ms) 01 1C (row 28)
// A version other than 1 throws
// "Incompatible version '%i' in DateTimeValue deserialization"; a field out of
// its range throws "Invalid %hs %d in DateTimeValue deserialization"; a
// failed read leaves the value as it was.
//
// Converters: StringValue <-> DateTimeValue (the text in the value's format;
// from text, a format from proposeFormat), DoubleValue <-> DateTimeValue (the
// julian), IntegerValue <-> DateTimeValue (whole julian days; from an integer,
// noon of that day), DateTimeValue -> FlexValue (the julian as a double),
// FlexValue -> DateTimeValue (a text read as from StringValue, a number as a
// julian, nothing clears), NullValue / MissingValue -> DateTimeValue (clears).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/DateTimeCalendar.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/BaseString.h>

#include <cstddef>
#include <ctime>

namespace quarn {

/// The calendar fields by number (also accepted as a plain int).
enum DateTimeValueField { Year = 1, Month = 2, Day = 3, Hour = 4, Minute = 5, Second = 6, Millisecond = 7 };

/// Pooled: create with newInstance(), hand back with deleteInstance().
/// Not for sharing between threads: even const readers fill caches.
class QUARN_API DateTimeValue : public ValueGlue<DateTimeValue, Value> {
  QUARN_VALUE_CLASS(DateTimeValue, "Marlix.value.DateTimeValue", PooledClassImp<DateTimeValue, -1>)

 public:
  using WString = BaseString<unsigned short>;

  static constexpr int DATETIME_SERIALIZE_VERSION = 1;
  /// The year field's undefined marker.
  static constexpr int kUndefinedYear = detail::calendar::kUndefinedYearField;
  /// Rows of the zone table; row 28 is "UTC".
  static constexpr int kTimeZoneCount = 217;
  static constexpr int kUtcRow = 28;

  /// One row of the zone table. `dayOffset` is |hhmm| in days.
  struct TimeZoneRow {
    char const *name;
    int toStandard;  ///< step to the standard-time row (daylight rows only)
    int toDaylight;  ///< step to the daylight-time row (standard rows only)
    int rule;        ///< 0 none, 1 North American, 2 European
    int hhmm;        ///< signed offset, -330 is three and a half hours west
    double dayOffset;
  };

  DateTimeValue();
  DateTimeValue(DateTimeValue const &other);
  ~DateTimeValue() override;
  /// Copies julian, julian-valid, text, format, text-valid, fields, milliseconds and zone.
  DateTimeValue &operator=(DateTimeValue const &other);

  /// A new pooled instance (same as newInstance).
  static DateTimeValue *allocate() { return newInstance(); }

  // ---- calendar fields (each setter clears both flags)

  /// Any year; -9999 means undefined.
  void setYear(int year);
  /// 1-12 or -1, else "Tried to set a month outside of range [1-12]: %d".
  void setMonth(int month);
  /// 1-31 or -1, else "Tried to set a day of month outside of range [1-31]: %d".
  void setDayOfMonth(int day);
  /// -1..23, -1..59, -1..59, -1..999 (messages name the range without the -1).
  void setHour(int hour);
  void setMinute(int minute);
  void setSecond(int second);
  void setMilliseconds(int ms);
  /// The year as a year number (-9999 undefined), month 1-12, the others as stored (-1 undefined).
  int getYear() const;
  int getMonth() const;
  int getDayOfMonth() const;
  int getHour() const { return m_tm.tm_hour; }
  int getMinute() const { return m_tm.tm_min; }
  int getSecond() const { return m_tm.tm_sec; }
  int getMilliseconds() const { return m_ms; }
  /// 1 Year ... 7 Millisecond, else "Illegal field index %d.  Legal values are: ...".
  bool isFieldDefined(int field) const;
  bool isFieldDefined(DateTimeValueField field) const { return isFieldDefined(static_cast<int>(field)); }
  void setFieldUndefined(int field);
  void setFieldUndefined(DateTimeValueField field) { setFieldUndefined(static_cast<int>(field)); }
  /// Fills undefined fields: year, month and day from the local time now
  /// (useNow) or as 1 January -4713; hour 12, minute, second, ms 0. Weekday,
  /// day of year and isdst become -1; both flags clear.
  void setUndefined(bool useNow);
  /// The broken-down fields as stored (tm_year years since 1900, or -9999).
  struct tm const &getTM() const { return m_tm; }

  // ---- whole settings (each ends with the zone step, see the file comment)

  /// Checks month, day, hour, minute and second first (milliseconds unchecked).
  void set(int year, int month, int day, int hour, int minute, int second, int ms);
  /// The date becomes undefined; checks hour, minute and second first.
  void setTime(int hour, int minute, int second, int ms);
  void set(struct tm const &fields, int ms);
  void set(double julian) { setJulian(julian); }
  /// The fields from julianToTM; the julian is kept as given (valid).
  void setJulian(double julian);
  void set(long seconds, int ms);
  /// Local time of `seconds` since 1970 (negative throws
  /// "Cannot perform calculation with negative seconds since 1 January, 1970: %d").
  void setSecondsSince1970(int seconds, int ms);
  /// The local time now, to the millisecond.
  void setToLocalDateTime();
  /// Parses `text` with `format` (null or empty: proposeFormat's choice) and
  /// keeps `text` as the cached text. A text that does not fit throws
  /// "Cannot read \"%ls\" as a date-time with format \"%ls\"" (or
  /// "No date-time format fits \"%ls\""); the value is then unchanged.
  void set(unsigned short const *text, unsigned short const *format);

  // ---- reading

  double getJulian() const;
  /// mktime of the fields (undefined ones filled as setUndefined(false)).
  int getSecondsSince1970() const;
  /// 1 Sunday ... 7 Saturday from julian + the row's day offset (outside UTC,
  /// which adds the offset twice, hours near midnight may give the neighbouring
  /// day); 0 when the date is undefined.
  int getDayOfWeek() const;
  /// 1-based.
  int getDayOfYear() const;
  /// ISO 8601 week (Monday first); `weekYear` receives the year it belongs to.
  int getWeekOfYear(int &weekYear) const;
  /// Locale names (`fromLocale`) or the built-in English ones; empty when undefined.
  WString getDayOfWeekText(bool fromLocale, bool abbreviated) const;
  WString getMonthText(bool fromLocale, bool abbreviated) const;
  /// The text in the value's format, cached until the value changes.
  WString const &getText() const;
  bool isDST() const { return IsDST(); }
  /// By the MACHINE zone's daylight rule and this value's date.
  bool IsDST() const;

  // ---- zones and format

  /// The row's name.
  WString getTimeZone() const;
  int getTimeZoneIndex() const { return m_timeZone; }
  /// |hhmm| of the row in hours (EST gives 5.0).
  double getTimeZoneOffset() const;
  /// First row named `name` (ignoring case of A-Z), else
  /// "\"%ls\" is not a valid time zone abbreviation" (value unchanged). With
  /// `convert`, the instant is kept and the fields move to the new zone.
  void setTimeZone(WString const &name, bool convert);
  /// First row whose hhmm matches `hours` (5.5 -> "IST", 0 -> "GMT", -5 -> "EST"); none: row 28.
  void setTimeZoneOffset(double hours);
  WString const &getDateTimeFormat() const { return m_format; }
  /// Clears text-valid only when the format changes.
  void setDateTimeFormat(unsigned short const *format);

  // ---- arithmetic (fills undefined fields first; a zero amount does nothing)

  void addYears(int years);
  /// The day is not clamped to the new month's length.
  void addMonths(int months);
  void addDays(double days);
  void addHours(double hours);
  void addMinutes(double minutes);
  void addSeconds(double seconds);
  void addMilliseconds(int ms);

  // ---- text

  /// Formats into `buffer` (`size` units with the terminator); returns the
  /// units written without the terminator, or 0 when they do not fit.
  /// Conversions: %a %A %b %B %h %c %C %d %D %e %H %I %j %m %M %n %p %r %R
  /// %s (milliseconds) %S %t %T %u %w %x %X %y %Y %z %Z %%. An undefined
  /// field writes nothing and sets `undefinedSeen` (an undefined year writes
  /// "****"). %U, %V, %W throw "%U not implemented yet" (and kin); another
  /// letter throws "Unknown control character for wcsftime: %<letter>".
  std::size_t wcsftime(unsigned short *buffer, std::size_t size, unsigned short const *format,
                       bool &undefinedSeen) const;
  /// Reads `text` by `format` into `fields` (all undefined first, year -9999),
  /// `ms` (-1 unless %s) and `zone` (-1 unless %Z or %z). Returns the
  /// position after the match, or null when the text does not fit.
  /// Conversions: %A %a %B %b %h (names, longest prefix, any case) %C %c %D
  /// %d %e %H %I %j %M %m %p %R %r %S %s %T %U %W %u %w %X %x %Y %y (below 70
  /// is 20xx) %Z %z %n %t %%; a blank in the format skips any blanks (space,
  /// tab, CR, LF, no-break space), and so does each numeric conversion.
  static unsigned short const *strptime(unsigned short const *text, unsigned short const *format,
                                        struct tm *fields, int &ms, int &zone);
  /// A format that reads the whole of `text`: the first that fits of ISO 8601
  /// forms (date, date and time with "T" or a blank, optional ".mmm" and "Z"
  /// or an offset), "%Y%m%d", "%Y%m", "%H:%M:%S", "%H:%M", "%I:%M:%S %p",
  /// "%m/%d/%y", "%m/%d/%Y", and the default format. Null when none fits.
  static unsigned short const *proposeFormat(unsigned short const *text);
  /// As proposeFormat, but the locale's own formats (%c, %x, %X) are tried
  /// first. Null string when none fits.
  static WString proposeLocaleFormat(unsigned short const *text);

  // ---- calendar functions

  static bool isLeapYear(int year);
  /// Days of `month` (1-12) in `year` by isLeapYear; else "Illegal month number: %d\n".
  static int daysInMonth(int month, int year);
  /// Inline (DateTimeCalendar.h): they sit in the inner loops of record processing.
  static void julianToTM(double julian, struct tm &fields, int &ms) { detail::calendar::julianToTm(julian, fields, ms); }
  static void TMToJulian(struct tm const &fields, int ms, double &julian) {
    julian = detail::calendar::tmToJulian(fields, ms);
  }

  // ---- zones and locale (class-wide)

  static TimeZoneRow const &getTimeZoneRow(int row);
  /// First row named `name` (A-Z case ignored), -1 when none.
  static int findTimeZone(unsigned short const *name);
  /// The process's LC_TIME locale name.
  static void getLocale(WString &name);
  /// Sets the process's LC_TIME locale and reloads the lists; false when refused.
  static bool setLocale(unsigned short const *name);
  /// (Re)loads names, formats and the machine zone row from the process locale
  /// and TZ. Done once on first use by itself; an explicit call must not race
  /// with other users of the locale data.
  static void loadLocale();
  static WString const *GetLocaleWeekdays();      ///< 7, Sunday first
  static WString const *GetLocaleWeekdaysAbbr();  ///< 7
  static WString const *GetLocaleMonths();        ///< 12
  static WString const *GetLocaleMonthsAbbr();    ///< 12
  static WString const *GetLocaleAMPM();          ///< 2
  static WString const &GetLocaleDateTimeFormat();
  static WString const &GetLocaleDateFormat();
  static WString const &GetLocaleTimeFormat();
  static int GetLocaleTimeZoneIndex();
  /// The machine zone's offset magnitude in hours.
  static double localToGMT();
  static int getCurrentYear();
  static int getCurrentMonth();
  static int getCurrentDayOfMonth();
  static int getCurrentHour();
  static int getCurrentMinute();
  static int getCurrentSecond();
  /// The machine zone's row name and offset magnitude in hours.
  static WString getCurrentTimeZone();
  static double getCurrentTimeZoneOffset();

  // ---- Value contract

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// floor(julian), saturating; NaN gives -2147483648.
  int getInteger() const override;
  /// True exactly when the julian is 0.0.
  bool getBoolean() const override;
  double getDouble() const override;
  void getString(WString &out) const override;
  void getArray(Array<WString> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  /// The text, and the format as `extra`.
  bool getXMLText(WString &text, WString &extra) const override;
  /// set(text, extra).
  void setFromXMLText(WString const &text, WString const &extra) override;
  void clear() override;
  /// Frees a cached text or format longer than 1000 units.
  void onDeactivate() override;

  bool operator==(DateTimeValue const &other) const { return getJulian() == other.getJulian(); }
  bool operator!=(DateTimeValue const &other) const { return getJulian() != other.getJulian(); }
  bool operator<(DateTimeValue const &other) const { return getJulian() < other.getJulian(); }
  bool operator<=(DateTimeValue const &other) const { return getJulian() <= other.getJulian(); }
  bool operator>(DateTimeValue const &other) const { return getJulian() > other.getJulian(); }
  bool operator>=(DateTimeValue const &other) const { return getJulian() >= other.getJulian(); }

 private:
  void changed() noexcept { m_julianValid = m_textValid = false; }
  void makeJulianValid() const;
  /// isdst 0 and row 28, then the daylight step of `row` (see the file comment).
  void zoneStep(int row);
  void setUndefinedFields() noexcept;
  void formatText() const;

  struct tm m_tm;
  int m_ms;
  mutable double m_julian;
  mutable WString m_text;
  int m_timeZone;
  WString m_format;
  mutable bool m_julianValid;
  mutable bool m_textValid;
};

}  // namespace quarn
