// DateTimeTextTest.cpp - the date-time value's own wcsftime and strptime, its text cache and format proposals
//
// This program runs in the "C" locale, so the names are the English ones and
// %c, %x and %X are "%a %b %e %H:%M:%S %Y", "%m/%d/%y" and "%H:%M:%S".
#include <gtest/gtest.h>
#include <quarn/value/DateTimeValue.h>

#include <locale.h>

#include <atomic>
#include <string>
#include <thread>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using DT = DateTimeValue;

DT made(int y, int mo, int d, int h, int mi, int s, int ms) {
  DT v;
  v.set(y, mo, d, h, mi, s, ms);
  return v;
}

std::u16string format(DT const &v, char16_t const *f, bool *undefinedSeen = nullptr) {
  unsigned short buffer[512];
  bool seen = false;
  std::size_t n = v.wcsftime(buffer, 512, u16(f).getBuffer(), seen);
  if (undefinedSeen) *undefinedSeen = seen;
  return std::u16string(buffer, buffer + n);
}

TEST(DateTimeTextTest, EveryConversionOfWcsftime) {
  DT v = made(2024, 3, 5, 14, 7, 9, 42);  // a Tuesday, day 65
  v.setTimeZone(u16(u"NST"), false);      // -330, rule 1 (no daylight in a UTC machine zone)
  struct Case {
    char16_t const *format, *text;
  } const cases[] = {
      {u"%a|%A", u"Tue|Tuesday"}, {u"%b|%B|%h", u"Mar|March|Mar"}, {u"%c", u"Tue Mar  5 14:07:09 2024"},
      {u"%C", u"20"},             {u"%d|%D", u"05|03/05/24"},      {u"%e", u" 5"},
      {u"%H|%I", u"14|02"},       {u"%j", u"065"},                 {u"%m|%M", u"03|07"},
      {u"a%nb%tc", u"a\nb\tc"},   {u"%p", u"PM"},                  {u"%r", u"02:07:09 PM"},
      {u"%R", u"14:07"},          {u"%s", u"042"},                 {u"%S", u"09"},
      {u"%T", u"14:07:09"},       {u"%u|%w", u"2|2"},              {u"%x", u"03/05/24"},
      {u"%X", u"14:07:09"},       {u"%y|%Y", u"24|2024"},          {u"%z", u"-0330"},
      {u"%Z", u"NST"},            {u"100%%", u"100%"},             {u"plain", u"plain"},
      {u"", u""},
  };
  for (auto const &c : cases) EXPECT_EQ(format(v, c.format), c.text) << utf8(u16(c.format));

  DT w = made(987, 11, 25, 0, 0, 0, 0);  // a Friday (Julian calendar)
  w.setTimeZone(u16(u"IST"), false);
  EXPECT_EQ(format(w, u"%Y|%y|%C|%e|%I %p|%u|%w|%z"), u"0987|87|09|25|12 AM|5|5|+0530");
}

TEST(DateTimeTextTest, WcsftimeRefusesWeekNumbersAndUnknownLetters) {
  DT v = made(2024, 3, 5, 14, 7, 9, 42);
  EXPECT_QUARN_THROW(format(v, u"%U"), "%U not implemented yet");
  EXPECT_QUARN_THROW(format(v, u"%V"), "%V not implemented yet");
  EXPECT_QUARN_THROW(format(v, u"%W"), "%W not implemented yet");
  EXPECT_QUARN_THROW(format(v, u"x %q"), "Unknown control character for wcsftime: %q");
  EXPECT_EQ(format(v, u"50%"), u"50%");
  unsigned short small[5];
  bool seen = false;
  EXPECT_EQ(v.wcsftime(small, 5, u16(u"%Y").getBuffer(), seen), 4u);
  EXPECT_EQ(v.wcsftime(small, 4, u16(u"%Y").getBuffer(), seen), 0u);  // no room for the terminator
  EXPECT_EQ(small[0], 0);
}

TEST(DateTimeTextTest, UndefinedFieldsAreSkippedAndReported) {
  DT v;
  v.setTime(9, 5, 0, -1);
  bool seen = false;
  EXPECT_EQ(format(v, u"%H:%M", &seen), u"09:05");
  EXPECT_FALSE(seen);
  EXPECT_EQ(format(v, u"[%Y][%d][%a][%s][%c][%x]%X", &seen), u"[****][][][][][]09:05:00");
  EXPECT_TRUE(seen);
  EXPECT_EQ(str(DT().getText()), u"   :: ****");
}

TEST(DateTimeTextTest, TextIsCachedUntilTheValueOrItsFormatChanges) {
  DT v = made(2000, 1, 1, 12, 0, 0, 0);
  EXPECT_EQ(str(v.getText()), u"Sat Jan  1 12:00:00 2000");
  unsigned short const *buffer = v.getText().getBuffer();
  v.setDateTimeFormat(u16(u"%Y-%m-%d").getBuffer());
  EXPECT_EQ(str(v.getText()), u"2000-01-01");
  EXPECT_EQ(v.getText().getBuffer(), buffer);  // the buffer is kept
  v.setDayOfMonth(2);
  EXPECT_EQ(textOf(v), u"2000-01-02");
  WString text, extra;
  EXPECT_TRUE(v.getXMLText(text, extra));
  EXPECT_EQ(str(text), u"2000-01-02");
  EXPECT_EQ(str(extra), u"%Y-%m-%d");
  DT read;
  read.setFromXMLText(text, extra);
  EXPECT_EQ(read.getJulian(), v.getJulian());
  EXPECT_EQ(str(read.getDateTimeFormat()), u"%Y-%m-%d");
}

struct Parsed {
  int year, month, day, hour, minute, second, ms, wday, yday, zone;
};

Parsed parse(char16_t const *text, char16_t const *fmt, std::size_t *used = nullptr) {
  struct tm fields {};
  int ms = 0, zone = 0;
  WString t = u16(text);
  unsigned short const *end = DT::strptime(t.getBuffer(), u16(fmt).getBuffer(), &fields, ms, zone);
  if (!end) return {0, 0, 0, 0, 0, 0, 0, 0, 0, -2};
  if (used) *used = static_cast<std::size_t>(end - t.getBuffer());
  return {fields.tm_year == -9999 ? -9999 : fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
          fields.tm_hour, fields.tm_min, fields.tm_sec, ms, fields.tm_wday, fields.tm_yday, zone};
}

TEST(DateTimeTextTest, EveryConversionOfStrptime) {
  constexpr int U = -1, UY = -9999, F = -2;  // undefined, undefined year, failed
  struct Case {
    char16_t const *text, *format;
    Parsed expected;
  } const cases[] = {
      {u"tuesday", u"%A", {UY, 0, U, U, U, U, U, 2, U, U}},
      {u"TUE", u"%a", {UY, 0, U, U, U, U, U, 2, U, U}},
      {u"septEMBER", u"%B", {UY, 9, U, U, U, U, U, U, U, U}},
      {u"sep", u"%b", {UY, 9, U, U, U, U, U, U, U, U}},
      {u"19", u"%C", {1900, 0, U, U, U, U, U, U, U, U}},
      {u"19 85", u"%C %y", {1985, 0, U, U, U, U, U, U, U, U}},
      {u"Tue Mar  5 14:07:09 2024", u"%c", {2024, 3, 5, 14, 7, 9, U, 2, U, U}},
      {u"03/05/24", u"%D", {2024, 3, 5, U, U, U, U, U, U, U}},
      {u"7", u"%d", {UY, 0, 7, U, U, U, U, U, U, U}},
      {u" 7", u"%e", {UY, 0, 7, U, U, U, U, U, U, U}},
      {u"23", u"%H", {UY, 0, U, 23, U, U, U, U, U, U}},
      {u"24", u"%H", {F, 0, 0, 0, 0, 0, 0, 0, 0, F}},
      {u"12 am", u"%I %p", {UY, 0, U, 0, U, U, U, U, U, U}},
      {u"12 PM", u"%I %p", {UY, 0, U, 12, U, U, U, U, U, U}},
      {u"07 pm", u"%I %p", {UY, 0, U, 19, U, U, U, U, U, U}},
      {u"07", u"%I", {UY, 0, U, 7, U, U, U, U, U, U}},
      {u"366", u"%j", {UY, 0, U, U, U, U, U, U, 365, U}},
      {u"59", u"%M", {UY, 0, U, U, 59, U, U, U, U, U}},
      {u"12", u"%m", {UY, 12, U, U, U, U, U, U, U, U}},
      {u"13", u"%m", {F, 0, 0, 0, 0, 0, 0, 0, 0, F}},
      {u"14:07", u"%R", {UY, 0, U, 14, 7, U, U, U, U, U}},
      {u"02:07:09 PM", u"%r", {UY, 0, U, 14, 7, 9, U, U, U, U}},
      {u"59", u"%S", {UY, 0, U, U, U, 59, U, U, U, U}},
      {u"042", u"%s", {UY, 0, U, U, U, U, 42, U, U, U}},
      {u"14:07:09", u"%T", {UY, 0, U, 14, 7, 9, U, U, U, U}},
      {u"53", u"%U", {UY, 0, U, U, U, U, U, U, U, U}},
      {u"07", u"%W", {UY, 0, U, U, U, U, U, U, U, U}},
      {u"7", u"%u", {UY, 0, U, U, U, U, U, 0, U, U}},
      {u"6", u"%w", {UY, 0, U, U, U, U, U, 6, U, U}},
      {u"14:07:09", u"%X", {UY, 0, U, 14, 7, 9, U, U, U, U}},
      {u"03/05/24", u"%x", {2024, 3, 5, U, U, U, U, U, U, U}},
      {u"-4713", u"%Y", {-4713, 0, U, U, U, U, U, U, U, U}},
      {u"69", u"%y", {2069, 0, U, U, U, U, U, U, U, U}},
      {u"70", u"%y", {1970, 0, U, U, U, U, U, U, U, U}},
      {u"eastern standard time", u"%Z", {UY, 0, U, U, U, U, U, U, U, 79}},
      {u"bst", u"%Z", {UY, 0, U, U, U, U, U, U, U, 22}},
      {u"+0530", u"%z", {UY, 0, U, U, U, U, U, U, U, 43}},
      {u"-05:00", u"%z", {UY, 0, U, U, U, U, U, U, U, 16}},
      {u"Z", u"%z", {UY, 0, U, U, U, U, U, U, U, 28}},
      {u"+0017", u"%z", {F, 0, 0, 0, 0, 0, 0, 0, 0, F}},
      {u"a \t\r\n\u00A0b", u"a b", {UY, 0, U, U, U, U, U, U, U, U}},
      {u"a\nb", u"a%nb", {UY, 0, U, U, U, U, U, U, U, U}},
      {u"50%", u"50%%", {UY, 0, U, U, U, U, U, U, U, U}},
      {u"x", u"%q", {F, 0, 0, 0, 0, 0, 0, 0, 0, F}},
      {u"2024-x", u"%Y-%m", {F, 0, 0, 0, 0, 0, 0, 0, 0, F}},
  };
  for (auto const &c : cases) {
    Parsed p = parse(c.text, c.format);
    Parsed const &e = c.expected;
    std::string const what = utf8(u16(c.text)) + " / " + utf8(u16(c.format));
    EXPECT_EQ(p.zone, e.zone) << what;
    if (e.zone == F) continue;
    EXPECT_EQ(p.year, e.year) << what;
    EXPECT_EQ(p.month, e.month) << what;
    EXPECT_EQ(p.day, e.day) << what;
    EXPECT_EQ(p.hour, e.hour) << what;
    EXPECT_EQ(p.minute, e.minute) << what;
    EXPECT_EQ(p.second, e.second) << what;
    EXPECT_EQ(p.ms, e.ms) << what;
    EXPECT_EQ(p.wday, e.wday) << what;
    EXPECT_EQ(p.yday, e.yday) << what;
  }
  std::size_t used = 0;  // the longest name that fits is "Sep"; the position after it is returned
  EXPECT_EQ(parse(u"Sept", u"%h", &used).month, 9);
  EXPECT_EQ(used, 3u);
}

TEST(DateTimeTextTest, SetFromTextKeepsTheTextAndAZoneItNames) {
  DT v;
  v.set(u16(u"Sat Jan  1 12:00:00 EST 2000").getBuffer(), u16(u"%a %b %e %T %Z %Y").getBuffer());
  EXPECT_EQ(str(v.getTimeZone()), u"EST");
  EXPECT_NEAR(v.getJulian(), 2451545.0 + 5.0 / 24, 1e-9);
  EXPECT_EQ(str(v.getText()), u"Sat Jan  1 12:00:00 EST 2000");
  unsigned short const *textBuffer = v.getText().getBuffer(), *formatBuffer = v.getDateTimeFormat().getBuffer();
  v.set(u16(u"Sun Jan  2 12:00:00 CET 2000").getBuffer(), u16(u"%a %b %e %T %Z %Y").getBuffer());
  EXPECT_EQ(v.getText().getBuffer(), textBuffer);  // reading text again reuses both buffers
  EXPECT_EQ(v.getDateTimeFormat().getBuffer(), formatBuffer);
  v.set(u16(u"1999-12-31").getBuffer(), nullptr);
  EXPECT_EQ(str(v.getDateTimeFormat()), u"%Y-%m-%d");
  EXPECT_EQ(str(v.getTimeZone()), u"UTC");
  EXPECT_FALSE(v.isFieldDefined(Hour));
  DT const before = v;
  EXPECT_QUARN_THROW(v.set(u16(u"1999-12-31 junk").getBuffer(), u16(u"%Y-%m-%d").getBuffer()),
                     "Cannot read \"1999-12-31 junk\" as a date-time with format \"%Y-%m-%d\"");
  EXPECT_EQ(serialise(v), serialise(before));
}

TEST(DateTimeTextTest, ProposeFormatPicksTheFirstCandidateThatReadsTheWholeText) {
  struct Case {
    char16_t const *text, *format;
  } const cases[] = {
      {u"2024-03-05T14:07:09.042+01:00", u"%Y-%m-%dT%H:%M:%S.%s%z"},
      {u"2024-03-05T14:07:09.042", u"%Y-%m-%dT%H:%M:%S.%s"},
      {u"2024-03-05T14:07:09Z", u"%Y-%m-%dT%H:%M:%S%z"},
      {u"2024-03-05T14:07:09", u"%Y-%m-%dT%H:%M:%S"},
      {u"2024-03-05T14:07", u"%Y-%m-%dT%H:%M"},
      {u"2024-03-05 14:07:09", u"%Y-%m-%d %H:%M:%S"},
      {u"2024-03-05", u"%Y-%m-%d"},
      {u"20240305T140709", u"%Y%m%dT%H%M%S"},
      {u"20240305", u"%Y%m%d"},
      {u"202403", u"%Y%m"},
      {u"14:07:09", u"%H:%M:%S"},
      {u"14:07", u"%H:%M"},
      {u"02:07:09 PM", u"%I:%M:%S %p"},
      {u"03/05/24", u"%m/%d/%y"},
      {u"03/05/2024", u"%m/%d/%Y"},
      {u"Tue Mar  5 14:07:09 2024", u"%a %b %e %T %Y"},
      {u"5 March 2024", u"%d %B %Y"},
      {u"March 5, 2024  ", u"%B %d, %Y"},
  };
  for (auto const &c : cases) {
    unsigned short const *f = DT::proposeFormat(u16(c.text).getBuffer());
    ASSERT_NE(f, nullptr) << utf8(u16(c.text));
    EXPECT_EQ(str(WString(f)), c.format) << utf8(u16(c.text));
  }
  EXPECT_EQ(DT::proposeFormat(u16(u"yesterday").getBuffer()), nullptr);
  EXPECT_EQ(DT::proposeFormat(u16(u"").getBuffer()), nullptr);
  EXPECT_EQ(str(DT::proposeLocaleFormat(u16(u"03/05/24").getBuffer())), u"%m/%d/%y");  // the locale's %x
  EXPECT_EQ(str(DT::proposeLocaleFormat(u16(u"2024-03-05").getBuffer())), u"%Y-%m-%d");
  EXPECT_TRUE(DT::proposeLocaleFormat(u16(u"soon").getBuffer()).isNull());
}

TEST(DateTimeTextTest, LocaleListsComeFromTheProcessLocale) {
  WString name;
  DT::getLocale(name);
  EXPECT_EQ(str(name), u"C");
  EXPECT_EQ(str(DT::GetLocaleWeekdays()[0]), u"Sunday");
  EXPECT_EQ(str(DT::GetLocaleWeekdaysAbbr()[6]), u"Sat");
  EXPECT_EQ(str(DT::GetLocaleMonths()[11]), u"December");
  EXPECT_EQ(str(DT::GetLocaleMonthsAbbr()[0]), u"Jan");
  EXPECT_EQ(str(DT::GetLocaleAMPM()[1]), u"PM");
  EXPECT_EQ(str(DT::GetLocaleDateTimeFormat()), u"%a %b %e %H:%M:%S %Y");
  EXPECT_EQ(str(DT::GetLocaleDateFormat()), u"%m/%d/%y");
  EXPECT_EQ(str(DT::GetLocaleTimeFormat()), u"%H:%M:%S");
}

bool twoThreadsFormat() {
  std::atomic<bool> go{false};
  std::u16string seen[2];
  auto work = [&](int k) {
    while (!go) std::this_thread::yield();
    seen[k] = format(made(2024, 3, 5, 14, 7, 9, 0), u"%A %B %p");
  };
  std::thread a(work, 0), b(work, 1);
  go = true;
  a.join();
  b.join();
  return seen[0] == u"Tuesday March PM" && seen[1] == seen[0];
}

TEST(DateTimeTextTest, TwoThreadsRacingToTheFirstLoadBothSeeTheWholeLocale) {
  // A fresh process (re-executed, not forked), so that nothing has loaded the locale yet.
  std::string const style = GTEST_FLAG_GET(death_test_style);
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::_Exit(twoThreadsFormat() ? 0 : 1), ::testing::ExitedWithCode(0), "");
  GTEST_FLAG_SET(death_test_style, style);
}

TEST(DateTimeTextTest, AnotherLocaleGivesItsOwnNames) {
  locale_t german = newlocale(LC_TIME_MASK, "de_DE.UTF-8", static_cast<locale_t>(nullptr));
  if (!german) GTEST_SKIP() << "no de_DE.UTF-8 locale on this machine";
  freelocale(german);
  EXPECT_EXIT(
      {
        if (!DT::setLocale(u16(u"de_DE.UTF-8").getBuffer())) std::_Exit(2);
        DT v = made(2024, 3, 5, 14, 7, 9, 0);
        bool const ok = format(v, u"%A %B") == u"Dienstag M\u00E4rz" &&
                        parse(u"DIENSTAG m\u00E4rz", u"%A %B").month == 3;
        std::_Exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quarn::test
