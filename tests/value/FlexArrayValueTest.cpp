// FlexArrayValueTest.cpp - the list of flexible values: storing through the scratch value, order, hash, bytes
#include <gtest/gtest.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/FlexArrayValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringValue.h>

#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueArrayContracts.h"

namespace quarn::test {
namespace {

using Code = FlexValue::StorageType;

std::vector<Code> codesOf(FlexArrayValue const &a) {
  std::vector<Code> codes;
  for (FlexValue const &e : a.getArray()) codes.push_back(e.getStorageType());
  return codes;
}

TEST(FlexArrayValueTest, AppendStoresAnyConvertibleValueAsOneElementAndFillStoresWideTexts) {
  int const three[] = {1, 2, 3};
  FlexArrayValue a;
  a.appendValue(IntegerValue(3));
  a.appendValue(StringValue("s"));
  a.appendValue(IntegerArrayValue(three, 3));  // not spliced: element 0 only
  a.appendValue(NullValue());
  a.appendValue(FlexValue(1.5f));
  EXPECT_EQ(codesOf(a),
            (std::vector<Code>{Code::IntType, Code::WStringType, Code::IntType, Code::NullType, Code::FloatType}));
  EXPECT_EQ(a.getIthInteger(2), 1);
  a.fillFromString(u16(u"1, \"b,c\" ,,d"), ',', true);  // each field as wide text
  EXPECT_EQ(codesOf(a), (std::vector<Code>{Code::WStringType, Code::WStringType, Code::WStringType}));
  EXPECT_EQ(textOf(a[1]), u"b,c");
  EXPECT_QUARN_THROW(a.appendValue(BitsetValue()),
                     "Could not convert from Marlix.value.BitsetValue to Marlix.value.FlexValue\n"
                     "FlexArrayValue::appendValue: Tessary exception caught");
  EXPECT_EQ(a.getSize(), 3u);
}

TEST(FlexArrayValueTest, InsertRemoveResizeAndSetWorkByIndexAndCheckIt) {
  FlexArrayValue a = flexesOf({FlexValue(1), FlexValue(3)});
  a.insertValue(1, IntegerValue(2));
  a.insertValue(3, StringValue("end"));
  a.insertValue(0, FlexValue(true));
  EXPECT_EQ(codesOf(a),
            (std::vector<Code>{Code::BoolType, Code::IntType, Code::IntType, Code::IntType, Code::WStringType}));
  EXPECT_EQ(a.getIthInteger(2), 2);
  a.remove(0);
  EXPECT_EQ(a.getIthInteger(0), 1);
  a.setIthValue(0, StringValue("one"));
  EXPECT_EQ(textOf(a[0]), u"one");
  a.resize(6);
  EXPECT_TRUE(a[5].isNull());
  EXPECT_QUARN_THROW_AS(a.insertValue(7, IntegerValue(0)), InvalidIndexException,
                        "Invalid index 7 (last valid index 5)\nFlexArrayValue::insertValue: Tessary exception caught");
  EXPECT_QUARN_THROW_AS(a.remove(6), InvalidIndexException, "Invalid index 6 (last valid index 5)");
  EXPECT_QUARN_THROW_AS(a.getIthDouble(6), InvalidIndexException, "Invalid index 6 (last valid index 5)");
  EXPECT_QUARN_THROW_AS(a.setIthValue(6, IntegerValue(0)), InvalidIndexException,
                        "Invalid index 6 (last valid index 5)\nFlexArrayValue::setIthValue: Tessary exception caught");
  EXPECT_EQ(a.getSize(), 6u);
}

TEST(FlexArrayValueTest, ElementsConvertByTheirOwnKindAndItemsAreFlexValues) {
  FlexArrayValue a = flexesOf({FlexValue(1), FlexValue(u16(u"2")), FlexValue(3.5)});
  EXPECT_EQ(a.getIthDouble(2), 3.5);  // getArray is covered by the conversions below

  ObjPtr<Value> item;
  a.getIthValue(1, item);
  EXPECT_EQ(item->getClassTag(), FlexValue::Tag);
  EXPECT_EQ(item->compare(a[1]), 0);
  IntegerValue target;
  a.getIthValue(1, target);
  EXPECT_EQ(target.getInteger(), 2);

  WString text, type;
  EXPECT_TRUE(a.getIthXMLText(2, text, type));
  EXPECT_EQ(str(type), u"xsd:double");
  FlexArrayValue b;
  for (unsigned int i = 0; i < a.getSize(); ++i) {
    a.getIthXMLText(i, text, type);
    b.appendValueFromXMLText(text, type);
  }
  EXPECT_EQ(b.compare(a), 0);
}

TEST(FlexArrayValueTest, HashIsThePolynomialOfTheElementHashesAndLongerArraysAreGreater) {
  EXPECT_EQ(FlexArrayValue().hash(), 0u);
  EXPECT_EQ(flexesOf({FlexValue(1), FlexValue(2)}).hash(), 33u);
  EXPECT_EQ(flexesOf({FlexValue(static_cast<unsigned char>(200)), FlexValue(u16(u"a"))}).hash(), 31u + 'a');
  // longer arrays are greater and elements compare as flex values do
  // clang-format off
  struct Case { FlexArrayValue a, b; int expected; } const cases[] = {
      {flexesOf({FlexValue(1), FlexValue(2)}), flexesOf({FlexValue(9)}), 1},
      {flexesOf({FlexValue(9)}), flexesOf({FlexValue(1), FlexValue(2)}), -1},
      {flexesOf({FlexValue(1), FlexValue(2)}), flexesOf({FlexValue(1), FlexValue(2)}), 0},
      {flexesOf({FlexValue(1), FlexValue(3)}), flexesOf({FlexValue(1), FlexValue(2)}), 1},
      {flexesOf({FlexValue(1), FlexValue(2)}), flexesOf({FlexValue(1), FlexValue(3)}), 1},
      {flexesOf({FlexValue(1)}), flexesOf({FlexValue(1.0)}), -1},
      {flexesOf({FlexValue(u16(u"a"))}), flexesOf({FlexValue(u16(u"c"))}), -2}, {FlexArrayValue(), FlexArrayValue(), 0},
  };
  // clang-format on
  for (auto const &c : cases) EXPECT_EQ(c.a.compare(c.b), c.expected) << hexOf(serialise(c.a));
  EXPECT_EQ(FlexArrayValue().compare(IntegerArrayValue()), 'I' - 'F');
}

TEST(FlexArrayValueTest, PayloadIsTheCountThenEachElementsOwnPayload) {
  // clang-format off
  struct Case { FlexArrayValue value; char const *bytes; } const cases[] = {
      {FlexArrayValue(), "00"}, {flexesOf({FlexValue(), FlexValue(1.0)}), "08 04 10 01"},
      {flexesOf({FlexValue(7), FlexValue("ab"), FlexValue(true)}), "0C 08 1C 24 0C 61 62 18 01"},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(hexOf(serialise(c.value)), c.bytes);
    readEach<FlexArrayValue>(golden(c.bytes), 2,
                             [&](FlexArrayValue const &read) { EXPECT_EQ(read.compare(c.value), 0) << c.bytes; });
  }
}

TEST(FlexArrayValueTest, BadCountsAndElementsFailClearlyAndKeepTheArray) {
  // clang-format off
  struct Case { char const *bytes; char const *message; } const cases[] = {
      {"FC", "Invalid array element count -1"},
      {"03 FF FF FF 7F 08 1C", "EOF reading int header"},  // claims 2147483647 elements, holds one
      {"08 08 1C 28", "FlexValue deserializing unknown type 10"}, {"04 24 FC", "Invalid string length prefix -1"},
  };
  // clang-format on
  for (auto const &c : cases) {
    FlexArrayValue a = flexesOf({FlexValue(5)});
    ChunkedInputStream in(golden(c.bytes), 8);
    EXPECT_QUARN_THROW(a.deserialize(in), c.message);
    ASSERT_EQ(a.getSize(), 1u);
    EXPECT_EQ(a.getIthInteger(0), 5);
  }
}

TEST(FlexArrayValueTest, ReturningToThePoolDropsTheElementsAndLargeBuffers) {
  FlexArrayValue small = flexesOf({FlexValue(u16(u"s"))}), large;
  small.onDeactivate();
  EXPECT_EQ(small.getSize(), 0u);
  EXPECT_GT(small.getArray().getCapacity(), 0u);
  large.resize(ArrayValue::kMaxPooledElements + 1);
  large.onDeactivate();
  EXPECT_EQ(large.getArray().getCapacity(), 0u);
}

TEST(FlexArrayValueTest, ConvertsWithTypedArraysScalarsAndFlexValues) {
  Make const before = make(flexesOf({FlexValue(9), FlexValue(8)}));
  Make const mixed = make(flexesOf({FlexValue(1), FlexValue(u16(u"2")), FlexValue(3.5)}));
  // clang-format off
  expectConversions({
      {make(arrayOf<IntegerArrayValue>({1, 2})), before, make(flexesOf({FlexValue(1), FlexValue(2)}))},
      {make(arrayOf<ByteArrayValue>({200})), before, make(flexesOf({FlexValue(static_cast<unsigned char>(200))}))},
      {make(IntegerValue(5)), before, make(flexesOf({FlexValue(5)}))},
      {make(FlexValue("x")), before, make(flexesOf({FlexValue("x")}))},
      {make(NullValue()), before, make(FlexArrayValue())},
      {mixed, make(IntegerArrayValue()), make(arrayOf<IntegerArrayValue>({1, 2, 3}))},
      {mixed, make(DoubleArrayValue()), make(arrayOf<DoubleArrayValue>({1.0, 2.0, 3.5}))},
      {mixed, make(StringArrayValue()), make(textsOf({u"1", u"2", u"3.5"}))},
      {mixed, make(IntegerValue()), make(IntegerValue(1))}, {mixed, make(FlexValue(u16(u"x"))), make(FlexValue(1))},
      {make(FlexArrayValue()), make(FlexValue(1)), make(FlexValue())},
  });
  // clang-format on
  IntegerValue first(1);
  EXPECT_QUARN_THROW_AS(FlexArrayValue().assignTo(first), InvalidIndexException,
                        "Invalid index 0 (last valid index -1)");
  EXPECT_EQ(first.getInteger(), 1);
}

}  // namespace
}  // namespace quarn::test
