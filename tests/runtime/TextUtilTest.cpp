// TextUtilTest.cpp - number and boolean readers, list readers, double writer and hash
//
// Each table runs through the 8-bit pointer form and the UTF-16 string form, so
// both unit types and both text shapes are held to the same rules.
#include <gtest/gtest.h>
#include <quarnCore/TextUtil.h>

#include <bit>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "support/ExpectThrow.h"

namespace {

using quarn::Array;
using Wide = quarn::BaseString<unsigned short>;
using namespace quarn::util;

constexpr double kInf = std::numeric_limits<double>::infinity();

/// 8-bit text widened byte by byte, embedded NULs kept; "" gives the empty (non-null) string.
Wide W(std::string_view text) {
  Wide s("");
  for (char c : text) s.append(static_cast<unsigned short>(static_cast<unsigned char>(c)));
  return s;
}

std::uint64_t bitsOf(double d) { return std::bit_cast<std::uint64_t>(d); }
bool same(double a, double b) { return bitsOf(a) == bitsOf(b); }  // exact for int and bool results too

/// Reads `text` with an end pointer through the 8-bit and the UTF-16 pointer
/// forms: both must give `value` (bit for bit) and stop after `consumed` units.
template <class V>
void expectStop(V (*narrow)(char const *, char const **), V (*wide)(unsigned short const *, unsigned short const **),
                char const *text, V value, long consumed) {
  SCOPED_TRACE(text);
  char const *end = nullptr;
  EXPECT_TRUE(same(narrow(text, &end), value));
  EXPECT_EQ(end - text, consumed);
  Wide w = W(text);
  unsigned short const *wideEnd = nullptr;
  EXPECT_TRUE(same(wide(w.getBuffer(), &wideEnd), value));
  EXPECT_EQ(wideEnd - w.getBuffer(), consumed);
}

/// Both forms of a whole-text reader give `value`, or both throw `message`.
template <class V, class F>
void expectWhole(F read, char const *text, V value, std::string const &message = "") {
  SCOPED_TRACE(text);
  if (message.empty()) {
    EXPECT_TRUE(same(read(text), value));
    EXPECT_TRUE(same(read(W(text)), value));
  } else {
    EXPECT_QUARN_THROW(read(text), message);
    EXPECT_QUARN_THROW(read(W(text)), message);
  }
}

template <class T>
std::vector<T> toVector(Array<T> const &a) {
  return std::vector<T>(a.begin(), a.end());
}

auto const readInteger = [](auto const &text) { return stringToInteger(text); };
auto const readDouble = [](auto const &text) { return stringToDouble(text); };
auto const readBoolean = [](auto const &text) { return stringToBoolean(text); };

TEST(TextUtilTest, ReadsWholeIntegersRejectsEverythingElseAndSaturatesWithAnEnd) {
  // clang-format off
  struct Case { char const *text; int value; } const cases[] = {
      {"0", 0}, {"-0", 0}, {"+7", 7}, {"007", 7}, {" \t\r\n42", 42}, {"\xA0-5\xA0", -5}, {"12 \n", 12},
      {"2147483647", INT_MAX}, {"-2147483648", INT_MIN},
  };
  // clang-format on
  for (auto const &c : cases) expectWhole(readInteger, c.text, c.value);
  for (char const *text : {"", " ", "abc", "1.5", "12abc", "- 1", "+-1", "--1", "1 2", "0x10", "1,"})
    expectWhole(readInteger, text, 0, "Cannot convert '" + std::string(text) + "' to an integer");
  EXPECT_QUARN_THROW(stringToInteger(static_cast<char const *>(nullptr)), "Cannot convert '(null)' to an integer");
  EXPECT_QUARN_THROW(stringToInteger(Wide()), "Cannot convert '(null)' to an integer");
  // A counted string must be whole: an embedded NUL ends the number but not the text.
  EXPECT_QUARN_THROW(stringToInteger(W(std::string_view("12\0", 3))), "Cannot convert '12' to an integer");
  EXPECT_QUARN_THROW(stringToInteger(std::string(100, 'x').c_str()),
                     "Cannot convert '" + std::string(80, 'x') + "...' to an integer");
  // Out of range: thrown without an end pointer, saturated with one.
  // clang-format off
  struct Range { char const *text; int saturated; } const ranges[] = {
      {"2147483648", INT_MAX}, {"-2147483649", INT_MIN}, {"+99999999999999999999999", INT_MAX},
  };
  // clang-format on
  for (auto const &c : ranges) {
    expectWhole(readInteger, c.text, 0, "Integer out of range: '" + std::string(c.text) + "'");
    expectStop(stringToInteger, stringToInteger, c.text, c.saturated, static_cast<long>(std::strlen(c.text)));
  }
}

TEST(TextUtilTest, EndPointerMarksWhereReadingStopped) {
  // clang-format off
  struct Case { char const *text; int value; long consumed; } const cases[] = {
      {"12abc", 12, 2}, {"  -3 4", -3, 4}, {"1.5", 1, 1}, {"abc", 0, 0}, {"   ", 0, 0}, {"-", 0, 0}, {"+x", 0, 0},
      {"", 0, 0},
  };
  // clang-format on
  for (auto const &c : cases) expectStop(stringToInteger, stringToInteger, c.text, c.value, c.consumed);
  char const *end = reinterpret_cast<char const *>(1);
  EXPECT_EQ(stringToInteger(static_cast<char const *>(nullptr), &end), 0);
  EXPECT_EQ(end, nullptr);
  // clang-format off
  struct DoubleCase { char const *text; double value; long consumed; } const doubles[] = {
      {"1e+", 1.0, 1}, {"3.5abc", 3.5, 3}, {" -1e999 ", -kInf, 7}, {"1e99999999999999999999", kInf, 22},
      {"infinite", kInf, 3}, {".x", 0.0, 0}, {"+-2", 0.0, 0}, {"0.000001e-999", 0.0, 13},
      {"12e9223372036854775807", kInf, 22}, {"-12e9223372036854775807", -kInf, 23},  // exponent LLONG_MAX
      {"0.001e-9223372036854775807", 0.0, 26},
  };
  // clang-format on
  for (auto const &c : doubles) expectStop(stringToDouble, stringToDouble, c.text, c.value, c.consumed);
}

TEST(TextUtilTest, ReadsDoublesInEveryFormAndRejectsEverythingElse) {
  // clang-format off
  struct Case { char const *text; double value; } const cases[] = {
      {"1.5", 1.5}, {"-.5", -0.5}, {"+2.", 2.0}, {"1e3", 1000.0}, {" 6.02E23 ", 6.02e23}, {"-0", -0.0}, {"0.1", 0.1},
      {"inf", kInf}, {"-Infinity", -kInf}, {"+INF", kInf}, {"4.9e-324", 5e-324}, {"1e-400", 0.0}, {"-1e-400", -0.0},
      {"2.2250738585072014e-308", DBL_MIN}, {"1.7976931348623157e308", DBL_MAX},
  };
  // clang-format on
  for (auto const &c : cases) expectWhole(readDouble, c.text, c.value);
  for (char const *text : {"nan", "NaN", "-NAN", "+nan"}) EXPECT_TRUE(std::isnan(stringToDouble(text))) << text;
  for (char const *text : {"", ".", "e5", "1e5x", "nan(1)", "++1", "+-1", "1,5", "0x1p3", "in", "- 1"})
    expectWhole(readDouble, text, 0.0, "Cannot convert '" + std::string(text) + "' to a double");
  EXPECT_QUARN_THROW(stringToDouble("1e999"), "Double out of range: '1e999'");
  EXPECT_QUARN_THROW(stringToDouble(W("-1" + std::string(400, '0'))),
                     "Double out of range: '-1" + std::string(78, '0') + "...'");
}

TEST(TextUtilTest, DoublesRoundTripThroughTheirShortestText) {
  double const denormMin = std::numeric_limits<double>::denorm_min();
  // clang-format off
  std::vector<double> values = {0.0, -0.0, DBL_MIN, -DBL_MIN, DBL_MAX, -DBL_MAX, DBL_EPSILON, 1.0 / 3, denormMin,
                                DBL_MIN - denormMin, kInf, -kInf, 0.1, 1e21, 1e-7, 123456789012345678.0};
  // clang-format on
  std::mt19937_64 random(20240531);
  for (int i = 0; i < 200000; ++i) values.push_back(std::bit_cast<double>(random()));
  for (double value : values) {
    unsigned short wide[32];
    char narrow[32];
    unsigned int n = doubleToString(value, wide, 32);
    ASSERT_EQ(doubleToString(value, narrow, 32), n);
    ASSERT_LE(n, 24u);
    if (std::isnan(value)) {
      ASSERT_STREQ(narrow, "nan");
      ASSERT_TRUE(std::isnan(stringToDouble(wide)));
    } else {
      ASSERT_TRUE(same(stringToDouble(wide), value) && same(stringToDouble(narrow), value)) << narrow;
    }
  }
}

TEST(TextUtilTest, WritesTheShortestTextCutToTheBufferAndHashesByFoldingTheWords) {
  // clang-format off
  struct Case { double value; char const *text; } const cases[] = {
      {0.1, "0.1"}, {-0.0, "-0"}, {100.0, "100"}, {1e21, "1e+21"}, {5e-324, "5e-324"},
      {DBL_MAX, "1.7976931348623157e+308"}, {kInf, "inf"}, {-kInf, "-inf"}, {std::nan(""), "nan"},
      {-std::nan(""), "nan"}, {123456789012345678.0, "123456789012345680"},
  };
  // clang-format on
  for (auto const &c : cases) {
    char buffer[32];
    EXPECT_EQ(doubleToString(c.value, buffer, 32), std::char_traits<char>::length(c.text));
    EXPECT_STREQ(buffer, c.text);
    EXPECT_EQ(doubleToString(c.value), W(c.text)) << c.text;
  }
  // clang-format off
  struct Cut { unsigned int size, written; char const *text; } const cuts[] = {
      {1, 0, ""}, {2, 1, "-"}, {4, 3, "-1."}, {5, 4, "-1.5"}, {6, 4, "-1.5"},
  };
  // clang-format on
  for (auto const &c : cuts) {
    unsigned short buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(doubleToString(-1.5, buffer, c.size), c.written);
    EXPECT_EQ(Wide(buffer), W(c.text)) << c.size;
  }
  char untouched[2] = {'#', '#'};
  EXPECT_EQ(doubleToString(-1.5, untouched, 0), 0u);
  EXPECT_EQ(untouched[0], '#');
  // the hash folds the high word onto the low word
  // clang-format off
  struct HashCase { double value; unsigned int hash; } const hashes[] = {
      {0.0, 0}, {-0.0, 0x80000000u}, {1.0, 0x3FF00000u}, {0.1, 0xA6200003u}, {DBL_MAX, 0x80100000u}, {5e-324, 1u},
      {-5e-324, 0x80000001u},
  };
  // clang-format on
  for (auto const &c : hashes) EXPECT_EQ(doubleHashCode(c.value), c.hash) << c.value;
}

TEST(TextUtilTest, ReadsBooleanWords) {
  // clang-format off
  struct Case { char const *text; bool value; } const cases[] = {
      {"true", true}, {"TRUE", true}, {" Yes ", true}, {"on", true}, {"1", true}, {"FaLsE", false}, {"no", false},
      {"\tOFF\n", false}, {"0", false},
  };
  // clang-format on
  for (auto const &c : cases) expectWhole(readBoolean, c.text, c.value);
  for (char const *text : {"", "t", "truth", "onion", "10", "2", "yes please", "oui", "tru e"})
    expectWhole(readBoolean, text, false, "Cannot convert '" + std::string(text) + "' to a boolean");
  expectStop(stringToBoolean, stringToBoolean, " on,off", true, 3);
  expectStop(stringToBoolean, stringToBoolean, " onion", false, 0);
}

TEST(TextUtilTest, ReadsListsUpToTheFirstBadItem) {
  // clang-format off
  struct Case { char const *text; std::vector<int> items; bool whole; } const cases[] = {
      {"", {}, true}, {" , ", {}, true}, {"1, 2,3  4", {1, 2, 3, 4}, true}, {",-1,,+2,\n", {-1, 2}, true},
      {"1 x 3", {1}, false}, {"1 2a 3", {1}, false}, {"5 3000000000 6", {5}, false}, {"1.5", {}, false},
  };
  // clang-format on
  for (auto const &c : cases) {
    SCOPED_TRACE(c.text);
    Array<int> narrow, wide;
    narrow.append(99), wide.append(99);  // replaced
    EXPECT_EQ(stringToIntegerArray(c.text, narrow, false), c.whole);
    EXPECT_EQ(stringToIntegerArray(W(c.text), wide, false), c.whole);
    EXPECT_EQ(toVector(narrow), c.items);
    EXPECT_EQ(toVector(wide), c.items);
  }
  Array<int> out;
  out.append(9);
  EXPECT_TRUE(stringToIntegerArray("1 2", out, true));
  EXPECT_TRUE(stringToIntegerArray(static_cast<char const *>(nullptr), out, true));
  EXPECT_EQ(toVector(out), (std::vector<int>{9, 1, 2}));  // appended to
  EXPECT_TRUE(stringToIntegerArray(Wide(), out, false));
  EXPECT_EQ(out.getSize(), 0u);

  Array<double> doubles;
  EXPECT_TRUE(stringToDoubleArray("1.5, -2e3 inf,-0", doubles, false));
  EXPECT_EQ(toVector(doubles), (std::vector<double>{1.5, -2000.0, kInf, -0.0}));
  EXPECT_TRUE(std::signbit(doubles[3]));
  EXPECT_FALSE(stringToDoubleArray(W("2.5 1.5;2"), doubles, false));
  EXPECT_EQ(toVector(doubles), (std::vector<double>{2.5}));
  EXPECT_FALSE(stringToDoubleArray("1 1e999", doubles, false));
  EXPECT_EQ(toVector(doubles), (std::vector<double>{1.0}));
  Array<bool> booleans;
  EXPECT_TRUE(stringToBooleanArray(W("true, no 1,OFF"), booleans, false));
  EXPECT_FALSE(stringToBooleanArray("yes maybe no", booleans, true));
  EXPECT_EQ(toVector(booleans), (std::vector<bool>{true, false, true, false, true}));
}

}  // namespace
