// IntegerValueTest.cpp - coercions, wrapping arithmetic, order and bytes of the integer value
#include <gtest/gtest.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringValue.h>

#include <climits>

#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

TEST(IntegerValueTest, CoercesToEveryScalarKindAndHashesToItself) {
  struct Case {
    int value;
    bool asBoolean;
    std::u16string asText;
  } const cases[] = {
      {0, false, u"0"}, {-5, true, u"-5"}, {INT_MIN, true, u"-2147483648"}, {INT_MAX, true, u"2147483647"}};
  for (auto const &c : cases) {
    IntegerValue v(c.value);
    EXPECT_EQ(v.getDouble(), static_cast<double>(c.value));
    EXPECT_EQ(v.getBoolean(), c.asBoolean);
    EXPECT_EQ(textOf(v), c.asText);
    EXPECT_EQ(v.hash(), static_cast<unsigned int>(c.value));
  }
}

TEST(IntegerValueTest, EveryArrayCoercionIsOneElementReplacingTheOldContents) {
  IntegerValue v(-7);
  Array<int> ints;
  ints.append(1);
  ints.append(2);
  Array<double> doubles;
  Array<bool> bools;
  Array<WString> texts;
  texts.append(u16(u"old"));
  v.getArray(ints);
  v.getArray(doubles);
  v.getArray(bools);
  v.getArray(texts);
  ASSERT_EQ(ints.getSize() + doubles.getSize() + bools.getSize() + texts.getSize(), 4u);
  EXPECT_EQ(ints[0], -7);
  EXPECT_EQ(doubles[0], -7.0);
  EXPECT_TRUE(bools[0]);
  EXPECT_EQ(str(texts[0]), u"-7");
}

TEST(IntegerValueTest, ArithmeticWrapsAroundInThirtyTwoBits) {
  IntegerValue v(INT_MAX);
  v += 1;
  EXPECT_EQ(v.getInteger(), INT_MIN);
  v -= 1;
  EXPECT_EQ(v.getInteger(), INT_MAX);
  v *= 2;
  EXPECT_EQ(v.getInteger(), -2);
  v = -7;
  v /= 2;
  EXPECT_EQ(v.getInteger(), -3);  // truncates toward zero
}

TEST(IntegerValueTest, ComparesSignedAndOtherClassesByNameOtherFirst) {
  struct Case {
    int a, b, expected;
  } const cases[] = {{3, 3, 0}, {4, 3, 1}, {-1, 1, -1}, {INT_MIN, INT_MAX, -1}};
  for (auto const &c : cases) EXPECT_EQ(IntegerValue(c.a).compare(IntegerValue(c.b)), c.expected) << c.a << " " << c.b;
  // "Marlix.value.StringValue" - "Marlix.value.IntegerValue" = 'S' - 'I'.
  EXPECT_EQ(IntegerValue(1).compare(StringValue("1")), 'S' - 'I');
  EXPECT_EQ(IntegerValue(1).compare(BooleanValue(true)), 'B' - 'I');
}

TEST(IntegerValueTest, PayloadIsTheCompactStreamInteger) {
  EXPECT_EQ(serialise(IntegerValue(7)), (Bytes{0x1C}));
  EXPECT_EQ(serialise(IntegerValue(40000)), (Bytes{0x03, 0x40, 0x9C, 0x00, 0x00}));
  EXPECT_EQ(serialise(IntegerValue(-129)), (Bytes{0x02, 0x7F, 0xFF}));
}

}  // namespace
}  // namespace quarn::test
