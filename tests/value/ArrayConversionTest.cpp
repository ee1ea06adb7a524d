// ArrayConversionTest.cpp - assignTo into, out of and between the typed arrays and fingerprints
#include <quarn/core/Ptr.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using IA = IntegerArrayValue;
using DA = DoubleArrayValue;
using SA = StringArrayValue;
using BA = BooleanArrayValue;
using YA = ByteArrayValue;

TEST(ArrayConversionTest, AScalarBecomesAOneElementArrayThroughTheGetterOfTheArraysKind) {
  expectConversions({
      {make(IntegerValue(-5)), make(arrayOf<IA>({7, 8})), make(arrayOf<IA>({-5}))},
      {make(DoubleValue(2.9)), make(IA()), make(arrayOf<IA>({2}))},
      {make(StringValue(" 12 ")), make(IA()), make(arrayOf<IA>({12}))},  // one element, not a list
      {make(IntegerValue(300)), make(YA()), make(arrayOf<YA>({44}))},
      {make(BooleanValue(true)), make(textsOf({u"a", u"b"})), make(textsOf({u"true"}))},
      {make(StringValue()), make(SA()), make(textsOf({nullptr}))},
      {make(IntegerValue(0)), make(BA()), make(arrayOf<BA>({false}))},
      {make(StringValue("0.5")), make(DoubleFingerprintValue()), make(arrayOf<DoubleFingerprintValue>({0.5}))},
      {make(IntegerValue(3)), make(IntegerFingerprintValue()), make(arrayOf<IntegerFingerprintValue>({3}))},
      {make(DoubleValue(1.5)), make(StringFingerprintValue()), make(textsOf<StringFingerprintValue>({u"1.5"}))},
  });
}

TEST(ArrayConversionTest, AnArrayBecomesAScalarThroughItsFirstElement) {
  expectConversions({
      {make(arrayOf<IA>({3, 4})), make(IntegerValue(1)), make(IntegerValue(3))},
      {make(arrayOf<IA>({3, 4})), make(StringValue("x")), make(StringValue("3"))},
      {make(arrayOf<DA>({0.0, 1.0})), make(BooleanValue(true)), make(BooleanValue(false))},
      {make(textsOf({u"2.5"})), make(DoubleValue(0.0)), make(DoubleValue(2.5))},
      {make(arrayOf<YA>({200})), make(IntegerValue(0)), make(IntegerValue(200))},
      {make(arrayOf<BA>({true})), make(StringValue()), make(StringValue("true"))},
      {make(textsOf<StringFingerprintValue>({u"k"})), make(StringValue()), make(StringValue("k"))},
  });
}

TEST(ArrayConversionTest, AnEmptyArrayHasNoScalarAndLeavesTheTargetAsItWas) {
  IntegerValue target(9);
  EXPECT_QUARN_THROW_AS(IA().assignTo(target), InvalidIndexException, "Invalid index 0 (last valid index -1)");
  EXPECT_EQ(target.getInteger(), 9);
}

TEST(ArrayConversionTest, ArraysConvertElementByElementIntoEveryOtherArrayClass) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  expectConversions({
      {make(arrayOf<IA>({1, 300, -1})), make(YA()), make(arrayOf<YA>({1, 44, 255}))},
      {make(arrayOf<YA>({200, 0})), make(IA()), make(arrayOf<IA>({200, 0}))},
      {make(arrayOf<DA>({2.9, nan})), make(IA()), make(arrayOf<IA>({2, INT_MIN}))},
      {make(textsOf({u"1", u"0"})), make(BA()), make(arrayOf<BA>({true, false}))},
      {make(arrayOf<BA>({true, false})), make(SA()), make(textsOf({u"true", u"false"}))},
      {make(arrayOf<DA>({0.5})), make(SA()), make(textsOf({u"0.5"}))},
      {make(arrayOf<IA>({5, 1, 5})), make(IntegerFingerprintValue()), make(arrayOf<IntegerFingerprintValue>({5, 1, 5}))},
      {make(arrayOf<IntegerFingerprintValue>({2})), make(IA()), make(arrayOf<IA>({2}))},
      {make(textsOf<StringFingerprintValue>({nullptr, u""})), make(SA()), make(textsOf({nullptr, u""}))},
      {make(arrayOf<DoubleFingerprintValue>({-0.25})), make(DA()), make(arrayOf<DA>({-0.25}))},
      {make(arrayOf<IntegerFingerprintValue>({7})), make(DoubleFingerprintValue()), make(arrayOf<DoubleFingerprintValue>({7.0}))},
  });
}

TEST(ArrayConversionTest, AFailedElementConversionLeavesTheTargetAsItWas) {
  IA target = arrayOf<IA>({1});
  EXPECT_QUARN_THROW(textsOf({u"2", u"x"}).assignTo(target), "Cannot convert 'x' to an integer");
  EXPECT_EQ(target.compare(arrayOf<IA>({1})), 0);
}

TEST(ArrayConversionTest, NullAndMissingValuesEmptyEveryArray) {
  for (Make const &from : {make(NullValue()), make(MissingValue())}) {
    expectConversions({
        {from, make(arrayOf<IA>({1})), make(IA())},
        {from, make(textsOf({u"a"})), make(SA())},
        {from, make(arrayOf<YA>({1})), make(YA())},
        {from, make(arrayOf<IntegerFingerprintValue>({1})), make(IntegerFingerprintValue())},
    });
  }
}

TEST(ArrayConversionTest, EveryPairOfArrayAndScalarOrArrayClassesHasAWay) {
  std::vector<ObjPtr<Value>> arrays, others;
  for (Make const &m : {make(IA()), make(DA()), make(SA()), make(BA()), make(YA()), make(IntegerFingerprintValue()),
                        make(DoubleFingerprintValue()), make(StringFingerprintValue())})
    arrays.emplace_back(m());
  for (Make const &m : {make(IntegerValue()), make(DoubleValue()), make(BooleanValue()), make(StringValue())})
    others.emplace_back(m());
  for (auto const &a : arrays) {
    for (auto const &b : arrays) EXPECT_TRUE(a->canAssignTo(b->getClassTag()));
    for (auto const &s : others) {
      EXPECT_TRUE(a->canAssignTo(s->getClassTag()));
      EXPECT_TRUE(s->canAssignTo(a->getClassTag()));
    }
    EXPECT_TRUE(NullValue().canAssignTo(a->getClassTag()));
    EXPECT_TRUE(MissingValue().canAssignTo(a->getClassTag()));
  }
}

TEST(ArrayConversionTest, XmlTextIsOneElementExceptForByteArraysWhichReadBase64) {
  IA ints;
  ints.setFromXMLText(u16(u"12"), WString());
  EXPECT_EQ(ints.compare(arrayOf<IA>({12})), 0);
  SA texts;
  texts.setFromXMLText(u16(u"a,b"), WString());
  EXPECT_EQ(texts.compare(textsOf({u"a,b"})), 0);
  YA bytes;
  bytes.setFromXMLText(u16(u"Zm9v"), WString());
  EXPECT_EQ(bytes.compare(arrayOf<YA>({'f', 'o', 'o'})), 0);
}

}  // namespace
}  // namespace quarn::test
