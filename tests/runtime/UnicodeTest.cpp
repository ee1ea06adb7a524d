// UnicodeTest.cpp - UTF-16 <-> UTF-8 over the whole code space and broken input
#include <quarnCore/Unicode.h>

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

using quarn::BaseString;
using quarn::util::ConvertStringtoUTF8;
using quarn::util::ConvertUTF8toString;
using Wide = BaseString<unsigned short>;
using Units = std::vector<unsigned short>;

std::string toUtf8(Units const &units) {
  BaseString<char> out;
  ConvertStringtoUTF8(out, units.data(), static_cast<unsigned int>(units.size()));
  return std::string(out.getBuffer(), out.getLength());
}

Units fromUtf8(std::string_view bytes) {
  Wide out;
  ConvertUTF8toString(out, bytes.data(), static_cast<unsigned int>(bytes.size()));
  return Units(out.getBuffer(), out.getBuffer() + out.getLength());
}

TEST(UnicodeTest, EncodesBoundaryCodePoints) {
  struct Case {
    Units units;
    char const *utf8;
  } const cases[] = {{{0x7F}, "\x7F"},
                     {{0x80}, "\xC2\x80"},
                     {{0xE9}, "\xC3\xA9"},
                     {{0x7FF}, "\xDF\xBF"},
                     {{0x800}, "\xE0\xA0\x80"},
                     {{0x20AC}, "\xE2\x82\xAC"},
                     {{0xD7FF}, "\xED\x9F\xBF"},
                     {{0xE000}, "\xEE\x80\x80"},
                     {{0xFFFF}, "\xEF\xBF\xBF"},
                     {{0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
                     {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
                     {{0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"}};
  for (auto const &c : cases) {
    EXPECT_EQ(toUtf8(c.units), c.utf8);
    EXPECT_EQ(fromUtf8(c.utf8), c.units);
  }
}

TEST(UnicodeTest, RoundTripsEveryBmpUnitAndEverySurrogatePair) {
  Units units;
  std::size_t expectedBytes = 0;
  for (unsigned int u = 1; u <= 0xFFFF; ++u) {
    if (u >= 0xD800 && u <= 0xDFFF) continue;
    units.push_back(static_cast<unsigned short>(u));
    expectedBytes += u < 0x80 ? 1 : u < 0x800 ? 2 : 3;
  }
  for (unsigned short high = 0xD800; high <= 0xDBFF; ++high)
    for (unsigned short low = 0xDC00; low <= 0xDFFF; ++low) units.insert(units.end(), {high, low});
  std::string utf8 = toUtf8(units);
  EXPECT_EQ(utf8.size(), expectedBytes + 4 * 1024 * 1024);
  EXPECT_EQ(fromUtf8(utf8), units);
}

TEST(UnicodeTest, ReplacesUnpairedSurrogates) {
  struct Case {
    Units units;
    std::string_view utf8;
  } const cases[] = {{{0xD800}, "\xEF\xBF\xBD"},
                     {{0xDC00}, "\xEF\xBF\xBD"},
                     {{0xD800, 'A'},
                      "\xEF\xBF\xBD"
                      "A"},
                     {{0xDC00, 0xD800}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
                     {{'A', 0xDBFF}, "A\xEF\xBF\xBD"},
                     {{0xD800, 0xD800, 0xDC00}, "\xEF\xBF\xBD\xF0\x90\x80\x80"}};
  for (auto const &c : cases) EXPECT_EQ(toUtf8(c.units), c.utf8);
}

TEST(UnicodeTest, ReplacesInvalidOverlongAndTruncatedUtf8) {
  constexpr unsigned short R = 0xFFFD;
  struct Case {
    std::string_view utf8;
    Units units;
  } const cases[] = {{"\x80", {R}},              // a continuation byte alone
                     {"\xFF", {R}},              // never a lead byte
                     {"\xC0\xAF", {R, R}},       // C0 and C1 only start overlong forms
                     {"\xE0\x80\xAF", {R}},      // overlong '/' in three bytes
                     {"\xF0\x80\x80\xAF", {R}},  // overlong '/' in four bytes
                     {"\xED\xA0\x80", {R}},      // an encoded surrogate
                     {"\xF4\x90\x80\x80", {R}},  // above U+10FFFF
                     {"\xF5\x80", {R, R}},       // lead byte of a 4-byte form beyond U+10FFFF
                     {"\xE2\x82", {R}},          // truncated at the end
                     {"\xE2\x82"
                      "A",
                      {R, 'A'}},  // truncated before ASCII
                     {"A\xC3", {'A', R}},
                     {"\xF0\x9F\x98"
                      "x\xC3\xA9",
                      {R, 'x', 0xE9}}};
  for (auto const &c : cases) EXPECT_EQ(fromUtf8(c.utf8), c.units) << testing::PrintToString(std::string(c.utf8));
}

TEST(UnicodeTest, NullStaysNullAndEmptyStaysEmpty) {
  Wide wide("stale");
  EXPECT_TRUE(ConvertStringtoUTF8(Wide()).isNull());
  EXPECT_EQ(ConvertStringtoUTF8(Wide("")), BaseString<char>(""));
  ConvertUTF8toString(wide, static_cast<char const *>(nullptr));
  EXPECT_TRUE(wide.isNull());
  ConvertUTF8toString(wide, "");
  EXPECT_FALSE(wide.isNull());
  ConvertUTF8toString(wide, BaseString<char>());
  EXPECT_TRUE(wide.isNull());
}

}  // namespace
