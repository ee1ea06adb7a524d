// DoubleArrayValueTest.cpp - NaN and signed-zero rules, conversions, hash and bytes of the double array
#include <quarn/value/DoubleArrayValue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <climits>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

double const kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(DoubleArrayValueTest, ElementsConvertAsDoubles) {
  struct Case {
    double element;
    int asInteger;
    bool asBoolean;
    std::u16string asText;
  } const cases[] = {
      {2.9, 2, true, u"2.9"},          {-2.9, -2, true, u"-2.9"}, {1e10, INT_MIN, true, u"1e+10"},
      {kNaN, INT_MIN, true, u"nan"},   {-0.0, 0, false, u"-0"},   {0.1, 0, true, u"0.1"},
  };
  for (auto const &c : cases) {
    DoubleArrayValue const a = arrayOf<DoubleArrayValue>({c.element});
    WString s;
    a.getIthString(0, s);
    EXPECT_EQ(a.getIthInteger(0), c.asInteger) << utf8(s);
    EXPECT_EQ(a.getIthBoolean(0), c.asBoolean) << utf8(s);
    EXPECT_EQ(str(s), c.asText);
  }
}

TEST(DoubleArrayValueTest, NaNIsNeverFoundAndMakesEveryComparisonOne) {
  DoubleArrayValue const nan = arrayOf<DoubleArrayValue>({kNaN});
  DoubleArrayValue const other = arrayOf<DoubleArrayValue>({kNaN});
  EXPECT_EQ(nan.find(kNaN), DoubleArrayValue::kNotFound);
  EXPECT_EQ(nan.compare(nan), 1);
  EXPECT_EQ(nan.compare(other), 1);
  EXPECT_EQ(other.compare(nan), 1);
  EXPECT_EQ(nan.compare(arrayOf<DoubleArrayValue>({1.0})), 1);
  EXPECT_EQ(arrayOf<DoubleArrayValue>({1.0}).compare(nan), 1);
}

TEST(DoubleArrayValueTest, ZeroAndMinusZeroAreEqualElements) {
  DoubleArrayValue const a = arrayOf<DoubleArrayValue>({1.0, 0.0});
  EXPECT_EQ(a.find(-0.0), 1u);
  EXPECT_EQ(a.compare(arrayOf<DoubleArrayValue>({1.0, -0.0})), 0);
  EXPECT_EQ(a.compare(arrayOf<DoubleArrayValue>({1.0, 0.5})), -1);
  EXPECT_EQ(a.compare(arrayOf<DoubleArrayValue>({1.0, -0.5})), 1);
}

TEST(DoubleArrayValueTest, LongArraysCompareAtTheFirstUnequalElementEvenAfterNaNFreeBlocks) {
  std::vector<double> v(100, 0.25);
  for (unsigned int pos : {0u, 7u, 8u, 9u, 99u}) {
    std::vector<double> w = v;
    w[pos] = kNaN;
    DoubleArrayValue const a(v.data(), 100), b(w.data(), 100);
    EXPECT_EQ(a.compare(b), 1) << pos;
    EXPECT_EQ(b.compare(b), 1) << pos;
    w[pos] = 0.5;
    EXPECT_EQ(DoubleArrayValue(w.data(), 100).compare(a), 1) << pos;
    EXPECT_EQ(a.compare(DoubleArrayValue(w.data(), 100)), -1) << pos;
  }
}

TEST(DoubleArrayValueTest, HashIsTheXorOfTheElementHashesWhateverTheirOrder) {
  std::mt19937 gen(3);
  std::uniform_real_distribution<double> dist(-1e6, 1e6);
  std::vector<double> v(41);
  for (double &x : v) x = dist(gen);
  std::uint32_t h = 0;
  for (double x : v) {
    auto bits = std::bit_cast<std::uint64_t>(x);
    h ^= static_cast<std::uint32_t>(bits ^ (bits >> 32));
  }
  EXPECT_EQ(DoubleArrayValue(v.data(), 41).hash(), h);
  std::shuffle(v.begin(), v.end(), gen);
  EXPECT_EQ(DoubleArrayValue(v.data(), 41).hash(), h);
  EXPECT_EQ(DoubleArrayValue().hash(), 0u);
}

TEST(DoubleArrayValueTest, PayloadIsTheCountThenEachElementAsAStreamDouble) {
  expectPayload(arrayOf<DoubleArrayValue>({1.0, 0.5, 0.0}), "0C 01 02 00 00 00 00 00 00 E0 3F 00");
}

}  // namespace
}  // namespace quarn::test
