// DoubleValueTest.cpp - truncation, NaN rules, byte hash and bytes of the double value
#include <gtest/gtest.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>

#include <climits>
#include <cmath>
#include <limits>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

double const kNaN = std::numeric_limits<double>::quiet_NaN();
double const kInf = std::numeric_limits<double>::infinity();

TEST(DoubleValueTest, IntegerIsTruncatedTowardZeroAndOutOfRangeIsIntMin) {
  struct Case {
    double value;
    int expected;
  } const cases[] = {
      {2.9, 2},        {-2.9, -2},       {-0.0, 0},       {2147483647.9, INT_MAX}, {-2147483648.9, INT_MIN},
      {1e10, INT_MIN}, {-1e10, INT_MIN}, {kNaN, INT_MIN}, {kInf, INT_MIN},         {2147483648.0, INT_MIN},
  };
  for (auto const &c : cases) EXPECT_EQ(DoubleValue(c.value).getInteger(), c.expected) << c.value;
}

TEST(DoubleValueTest, BooleanIsTrueUnlessZeroSoNaNIsTrue) {
  EXPECT_FALSE(DoubleValue(0.0).getBoolean());
  EXPECT_FALSE(DoubleValue(-0.0).getBoolean());
  EXPECT_TRUE(DoubleValue(kNaN).getBoolean());
  EXPECT_TRUE(DoubleValue(5e-324).getBoolean());
}

TEST(DoubleValueTest, ComparesLessEqualOtherwiseOneAndOneForAnyOtherClass) {
  struct Case {
    double a, b;
    int expected;
  } const cases[] = {{1.0, 1.0, 0},  {0.0, -0.0, 0}, {1.0, 2.0, -1},  {2.0, 1.0, 1},
                     {kNaN, 1.0, 1}, {1.0, kNaN, 1}, {kNaN, kNaN, 1}, {-kInf, kInf, -1}};
  for (auto const &c : cases) EXPECT_EQ(DoubleValue(c.a).compare(DoubleValue(c.b)), c.expected) << c.a << " " << c.b;
  EXPECT_EQ(DoubleValue(1.0).compare(IntegerValue(5)), 1);
  EXPECT_EQ(DoubleValue(1.0).compare(BooleanValue(true)), 1);  // name order would say 'B' < 'D'
}

// h = b0*31^7 + ... + b7 over the little-endian bytes, computed independently.
unsigned int expectedHash(unsigned long long bits) {
  unsigned long long h = 0;
  for (int i = 0; i < 8; ++i) h = (h * 31 + ((bits >> (8 * i)) & 0xFF)) & 0xFFFFFFFFull;
  return static_cast<unsigned int>(h);
}

TEST(DoubleValueTest, HashRunsOverTheEightLittleEndianBytes) {
  EXPECT_EQ(DoubleValue(0.0).hash(), 0u);
  EXPECT_EQ(DoubleValue(-0.0).hash(), 128u);  // only b7 = 80: equal to 0.0, hashed apart
  EXPECT_EQ(DoubleValue(1.0).hash(), 0xF0u * 31u + 0x3Fu);
  EXPECT_EQ(DoubleValue(5e-324).hash(), 1742810335u);  // b0 = 1 weighs 31^7 mod 2^32
  EXPECT_EQ(DoubleValue(-1234.5678).hash(), expectedHash(0xC0934A456D5CFAADull));
}

TEST(DoubleValueTest, PayloadIsTheTaggedStreamDouble) {
  EXPECT_EQ(serialise(DoubleValue(-0.0)), (Bytes{0x00}));
  EXPECT_EQ(serialise(DoubleValue(1.0)), (Bytes{0x01}));
  EXPECT_EQ(serialise(DoubleValue(0.5)), (Bytes{0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x3F}));
  DoubleValue read(7.0);
  ChunkedInputStream nan(serialise(DoubleValue(kNaN)), 2);
  read.deserialize(nan);
  EXPECT_TRUE(std::isnan(read.getDouble()));
  ChunkedInputStream shortBody(Bytes{0x02, 0x00, 0x00}, 8);
  EXPECT_QUARN_THROW(read.deserialize(shortBody), "EOF reading double");
  EXPECT_TRUE(std::isnan(read.getDouble()));
}

}  // namespace
}  // namespace quarn::test
