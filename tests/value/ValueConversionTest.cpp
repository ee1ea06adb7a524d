// ValueConversionTest.cpp - assignTo between every pair of scalar classes and out of the null values
#include <gtest/gtest.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>

#include <string_view>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

MissingValue missing(std::u16string_view why) {
  MissingValue m;
  m.setMissingString(u16(why));
  return m;
}

TEST(ValueConversionTest, EachScalarConvertsIntoEachScalarThroughTheTargetsGetter) {
  expectConversions({
      {make(IntegerValue(-5)), make(IntegerValue(1)), make(IntegerValue(-5))},
      {make(IntegerValue(-5)), make(DoubleValue(1.0)), make(DoubleValue(-5.0))},
      {make(IntegerValue(-5)), make(BooleanValue(false)), make(BooleanValue(true))},
      {make(IntegerValue(-5)), make(StringValue("x")), make(StringValue("-5"))},
      {make(DoubleValue(-2.9)), make(IntegerValue(1)), make(IntegerValue(-2))},
      {make(DoubleValue(-2.9)), make(DoubleValue(1.0)), make(DoubleValue(-2.9))},
      {make(DoubleValue(-0.0)), make(BooleanValue(true)), make(BooleanValue(false))},
      {make(DoubleValue(0.1)), make(StringValue("x")), make(StringValue("0.1"))},
      {make(BooleanValue(true)), make(IntegerValue(7)), make(IntegerValue(1))},
      {make(BooleanValue(true)), make(DoubleValue(7.0)), make(DoubleValue(1.0))},
      {make(BooleanValue(true)), make(BooleanValue(false)), make(BooleanValue(true))},
      {make(BooleanValue(false)), make(StringValue("x")), make(StringValue("false"))},
      {make(StringValue(" 12 ")), make(IntegerValue(1)), make(IntegerValue(12))},
      {make(StringValue("1e3")), make(DoubleValue(1.0)), make(DoubleValue(1000.0))},
      {make(StringValue("off")), make(BooleanValue(true)), make(BooleanValue(false))},
      {make(StringValue("abc")), make(StringValue("x")), make(StringValue("abc"))},
  });
}

TEST(ValueConversionTest, NullAndMissingClearTheTarget) {
  for (Make const &from : {make(NullValue()), make(missing(u"why"))}) {
    expectConversions({
        {from, make(IntegerValue(9)), make(IntegerValue(0))},
        {from, make(DoubleValue(9.5)), make(DoubleValue(0.0))},
        {from, make(BooleanValue(true)), make(BooleanValue(false))},
        {from, make(StringValue("abc")), make(StringValue(""))},
    });
  }
  StringValue nullText;
  NullValue().assignTo(nullText);
  EXPECT_TRUE(nullText.getString().isNull());  // cleared: a null text stays null
}

TEST(ValueConversionTest, RefusedConversionsLeaveTheTargetAsItWasAndNothingConvertsIntoTheNullValues) {
  IntegerValue target(4);
  EXPECT_QUARN_THROW(StringValue("4x").assignTo(target), "Cannot convert '4x' to an integer");
  EXPECT_EQ(target.getInteger(), 4);
  NullValue null;
  MissingValue absent;
  EXPECT_QUARN_THROW(StringValue("x").assignTo(null),
                     "Could not convert from Marlix.value.StringValue to Marlix.value.NullValue");
  EXPECT_QUARN_THROW(null.assignTo(absent),
                     "Could not convert from Marlix.value.NullValue to Marlix.value.MissingValue");
  EXPECT_FALSE(IntegerValue(1).canAssignTo(MissingValue::Tag));
}

TEST(ValueConversionTest, XmlTextOfEachScalarIsReadThroughTheConverterFromText) {
  IntegerValue i;
  DoubleValue d;
  BooleanValue b;
  i.setFromXMLText(u16(u"-17"), WString());
  d.setFromXMLText(u16(u"2.5e-3"), WString());
  b.setFromXMLText(u16(u"yes"), WString());
  EXPECT_EQ(i.getInteger(), -17);
  EXPECT_EQ(d.getDouble(), 2.5e-3);
  EXPECT_TRUE(b.getBoolean());
}

}  // namespace
}  // namespace quarn::test
