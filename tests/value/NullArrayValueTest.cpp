// NullArrayValueTest.cpp - a counted list of nulls: order by count, conversions, bounded payload
#include <gtest/gtest.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullArrayValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>

#include <cmath>

#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueArrayContracts.h"

namespace quarn::test {
namespace {

TEST(NullArrayValueTest, OrdersByCountAlone) {
  struct Case {
    unsigned int a, b;
    int expected;
  } const cases[] = {{3, 5, -1}, {5, 3, 1}, {4, 4, 0}, {0, 0, 0}, {0, 1, -1}};
  for (auto const &c : cases) EXPECT_EQ(nullsOf(c.a).compare(nullsOf(c.b)), c.expected) << c.a << " vs " << c.b;
  EXPECT_EQ(nullsOf(1).compare(IntegerArrayValue()), 'I' - 'N');
  EXPECT_EQ(nullsOf(7).hash(), 0u);
}

TEST(NullArrayValueTest, PayloadIsTheCountAlone) {
  struct Case {
    unsigned int count;
    char const *bytes;
  } const cases[] = {{0, "00"}, {3, "0C"}, {40, "01 28"}};
  for (auto const &c : cases) {
    EXPECT_EQ(hexOf(serialise(nullsOf(c.count))), c.bytes);
    readEach<NullArrayValue>(golden(c.bytes), 2,
                             [&](NullArrayValue const &read) { EXPECT_EQ(read.getSize(), c.count); });
    expectEveryCutFails(golden(c.bytes), nullsOf(2));
  }
}

TEST(NullArrayValueTest, ACountTheDataCannotVouchForIsBounded) {
  struct Case {
    char const *bytes;
    char const *message;
  } const cases[] = {
      {"FC", "Invalid array element count -1"},
      {"03 01 00 10 00", "NullArrayValue element count 1048577 exceeds 1048576"},
      {"03 FF FF FF 7F", "NullArrayValue element count 2147483647 exceeds 1048576"},
  };
  for (auto const &c : cases) {
    NullArrayValue a = nullsOf(2);
    ChunkedInputStream in(golden(c.bytes), 8);
    EXPECT_QUARN_THROW(a.deserialize(in), c.message);
    EXPECT_EQ(a.getSize(), 2u);
  }
}

TEST(NullArrayValueTest, ElementsAnswerAsNullValuesDo) {
  NullArrayValue a = nullsOf(2);
  EXPECT_TRUE(std::isnan(a.getIthDouble(1)));
  EXPECT_QUARN_THROW(a.getIthInteger(0), "Invalid request: a NullValue type cannot hold a value");
  EXPECT_QUARN_THROW(a.getIthBoolean(0), "Invalid request: a NullValue type cannot hold a value");
  WString text = u16(u"old");
  a.getIthString(1, text);
  EXPECT_EQ(str(text), u"");
  Array<double> doubles;
  a.getArray(doubles);
  EXPECT_EQ(doubles.getSize(), 2u);
  Array<int> ints;
  ints.append(9);
  EXPECT_QUARN_THROW(a.getArray(ints), "Invalid request: a NullValue type cannot hold a value");
  EXPECT_EQ(ints.getSize(), 1u);
  nullsOf(0).getArray(ints);
  EXPECT_EQ(ints.getSize(), 0u);

  ObjPtr<Value> item;
  a.getIthValue(0, item);
  EXPECT_EQ(item->getClassTag(), NullValue::Tag);
  IntegerValue target(5);
  a.getIthValue(0, target);
  EXPECT_EQ(target.getInteger(), 0);
  EXPECT_QUARN_THROW_AS(a.getIthValue(2, target), InvalidIndexException,
                        "Invalid index 2 (last valid index 1)\nNullArrayValue::getIthValue: Tessary exception caught");
}

TEST(NullArrayValueTest, AddsOneNullPerScalarAndOnePerItemOfAnArray) {
  int const three[] = {1, 2, 3};
  NullArrayValue a;
  a.appendValue(IntegerValue(1));
  a.appendValue(NullValue());
  a.appendValue(IntegerArrayValue(three, 3));
  a.appendValue(nullsOf(2));
  EXPECT_EQ(a.getSize(), 7u);
  a.insertValue(7, StringValue("x"));
  a.remove(0);
  a.setIthValue(6, IntegerValue(1));
  EXPECT_EQ(a.getSize(), 7u);
  EXPECT_QUARN_THROW_AS(a.setIthValue(7, IntegerValue(1)), InvalidIndexException,
                        "Invalid index 7 (last valid index 6)\nNullArrayValue::setIthValue: Tessary exception caught");
  MissingValue missing;
  missing.setMissingString(u16(u"why"));
  a.append(missing);
  EXPECT_EQ(a.getSize(), 8u);
}

TEST(NullArrayValueTest, ConvertsWithNullsAndValueArrays) {
  expectConversions({
      {make(NullValue()), make(nullsOf(3)), make(nullsOf(0))},
      {make(MissingValue()), make(nullsOf(3)), make(nullsOf(0))},
      {make(valuesOf(IntegerValue(1), StringValue("s"))), make(nullsOf(3)), make(nullsOf(2))},
      {make(nullsOf(4)), make(ValueArrayValue()), make(valuesOf(NullValue(), NullValue(), NullValue(), NullValue()))},
  });
}

}  // namespace
}  // namespace quarn::test
