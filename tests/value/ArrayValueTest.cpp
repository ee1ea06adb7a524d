// ArrayValueTest.cpp - what every typed array shares: element edits, delimited text, untrusted payloads, pool hooks
#include <gtest/gtest.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/NullValue.h>
#include <quarnCore/Exception.h>

#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

std::vector<std::u16string> textsIn(ArrayValue const &array) {
  std::vector<std::u16string> out;
  for (unsigned int i = 0; i < array.getSize(); ++i) {
    WString s;
    array.getIthString(i, s);
    out.push_back(str(s));
  }
  return out;
}

std::vector<int> intsIn(IntegerArrayValue const &array) {
  return std::vector<int>(array.getBuffer(), array.getBuffer() + array.getSize());
}

// ---- shared by the five classes

template <class A>
class EveryArrayTest : public ::testing::Test {};
using ArrayClasses =
    ::testing::Types<IntegerArrayValue, DoubleArrayValue, StringArrayValue, BooleanArrayValue, ByteArrayValue>;
TYPED_TEST_SUITE(EveryArrayTest, ArrayClasses);

TYPED_TEST(EveryArrayTest, AnEmptyArrayHasNoScalarViewAndIndexesPastTheSizeThrowWithTheLastValidIndex) {
  TypeParam empty;
  EXPECT_QUARN_THROW_AS(empty.getInteger(), InvalidIndexException, "Invalid index 0 (last valid index -1)");
  EXPECT_QUARN_THROW_AS(empty.getDouble(), InvalidIndexException, "Invalid index 0 (last valid index -1)");
  std::string const name = TypeParam::shortName;
  WString text = u16(u"kept");
  EXPECT_QUARN_THROW_AS(empty.getString(text), InvalidIndexException,
                        "Invalid index 0 (last valid index -1)\n" + name + "::getIthString: Tessary exception caught");
  int i = 7;
  double d = 2.5;
  bool b = true;
  EXPECT_FALSE(empty.findInteger(i) || empty.findDouble(d) || empty.findBoolean(b) || empty.findString(text));
  EXPECT_EQ(i, 7);
  EXPECT_EQ(d, 2.5);
  EXPECT_TRUE(b);
  EXPECT_EQ(str(text), u"kept");
  // indexes at or beyond the size throw with the last valid index
  TypeParam array;
  array.appendValue(IntegerValue(1));
  array.appendValue(IntegerValue(0));
  std::string const bad = "Invalid index 2 (last valid index 1)";
  EXPECT_QUARN_THROW_AS(array.getIthInteger(2), InvalidIndexException, bad);
  EXPECT_QUARN_THROW_AS(array.getIthBoolean(2), InvalidIndexException, bad);
  EXPECT_QUARN_THROW_AS(array.remove(2), InvalidIndexException, bad);
  EXPECT_QUARN_THROW_AS(array[2], InvalidIndexException, bad);
  EXPECT_QUARN_THROW_AS(array.setIthValue(2, IntegerValue(1)), InvalidIndexException,
                        bad + "\n" + name + "::setIthValue: Tessary exception caught");
  ObjPtr<Value> item;
  EXPECT_QUARN_THROW_AS(array.getIthValue(2, item), InvalidIndexException,
                        bad + "\n" + name + "::getIthValue: Tessary exception caught");
  EXPECT_QUARN_THROW_AS(array.insertValue(3, IntegerValue(1)), InvalidIndexException,
                        "Invalid index 3 (last valid index 1)\n" + name + "::insertValue: Tessary exception caught");
  EXPECT_EQ(array.getSize(), 2u);
}

TYPED_TEST(EveryArrayTest, AppendSplicesArraysInsertTakesOneScalarAndRemoveClosesTheGap) {
  TypeParam array;
  array.appendValue(IntegerValue(1));
  EXPECT_EQ(array.getSize(), 1u);
  array.appendValue(arrayOf<IntegerArrayValue>({0, 1, 1}));
  EXPECT_EQ(array.getSize(), 4u);
  array.appendValue(IntegerArrayValue());
  array.appendValue(NullValue());
  EXPECT_EQ(array.getSize(), 4u);
  array.appendValue(array);  // its own elements, once
  EXPECT_EQ(array.getSize(), 8u);
  std::vector<bool> truth;
  for (unsigned int i = 0; i < array.getSize(); ++i) truth.push_back(array.getIthBoolean(i));
  EXPECT_EQ(truth, (std::vector<bool>{true, false, true, true, true, false, true, true}));
  array.resize(0);  // insert takes one scalar conversion and remove closes the gap
  array.insertValue(0, IntegerValue(1));
  array.insertValue(0, arrayOf<IntegerArrayValue>({0, 1}));  // its first element only
  array.insertValue(2, IntegerValue(0));                     // at the end
  EXPECT_EQ(array.getSize(), 3u);
  EXPECT_EQ((std::vector<int>{array.getIthInteger(0), array.getIthInteger(1), array.getIthInteger(2)}),
            (std::vector<int>{0, 1, 0}));
  array.remove(0);
  EXPECT_EQ(array.getSize(), 2u);
  EXPECT_EQ(array.getIthInteger(0), 1);
}

TYPED_TEST(EveryArrayTest, HostileCountsFailWithoutAllocatingAndKeepTheArray) {
  // 03 FF FF FF 7F is the count 2147483647; three one-byte elements (00) follow,
  // and the fourth runs short in its first byte. FC is the count -1.
  std::string const eof = std::is_same_v<TypeParam, BooleanArrayValue> ? "EOF reading bool"
                          : std::is_same_v<TypeParam, DoubleArrayValue> || std::is_same_v<TypeParam, ByteArrayValue>
                              ? "EOF reading byte"
                              : "EOF reading int header";
  // clang-format off
  struct Case {
    Bytes bytes;
    std::string message;
    std::size_t consumed;  // by a memory stream: all that was there, like any stream
  } const cases[] = {
      {{0x03, 0xFF, 0xFF, 0xFF, 0x7F, 0x00, 0x00, 0x00}, eof, 8}, {{0xFC, 0x04}, "Invalid array element count -1", 1},
  };
  // clang-format on
  TypeParam array;
  array.appendValue(IntegerValue(1));
  Bytes const before = serialise(array);
  for (auto const &c : cases) {
    MemoryInputStream memory(c.bytes.data(), static_cast<unsigned int>(c.bytes.size()));
    EXPECT_QUARN_THROW(array.deserialize(memory), c.message);
    EXPECT_EQ(memory.getPosition(), c.consumed);
    for (int chunk : kChunkSizes) {
      ChunkedInputStream in(c.bytes, chunk);
      EXPECT_QUARN_THROW(array.deserialize(in), c.message);
      EXPECT_EQ(in.atEnd(), c.consumed == c.bytes.size());
    }
    EXPECT_EQ(serialise(array), before);
  }
}

// Pooled arrays are filled and read again and again: both go into the buffer they kept.
TYPED_TEST(EveryArrayTest, SetElementsAndReadingFromMemoryReuseTheBufferTheArrayKept) {
  using T = typename TypeParam::ElementType;
  auto of = [](std::initializer_list<int> values) {
    TypeParam a;
    for (int v : values) a.appendValue(IntegerValue(v));
    return a;
  };
  TypeParam const three = of({1, 0, 1});
  TypeParam array;
  array.resize(40);
  T const *const buffer = array.getBuffer();
  array.setElements(three.getBuffer(), 3);
  EXPECT_EQ(array.getBuffer(), buffer);
  EXPECT_EQ(array.compare(three), 0);
  array.setElements(array.getBuffer() + 1, 2);  // from its own elements
  EXPECT_EQ(array.compare(of({0, 1})), 0);
  Bytes const bytes = serialise(three);
  MemoryInputStream in(bytes.data(), static_cast<unsigned int>(bytes.size()));
  array.deserialize(in);
  if constexpr (!std::is_same_v<TypeParam, StringArrayValue>) {  // strings are read aside, then swapped in
    EXPECT_EQ(array.getBuffer(), buffer);
  }
  EXPECT_EQ(array.compare(three), 0);
  T const *const read = array.getBuffer();
  array.setElements(three.getElements());
  EXPECT_EQ(array.getBuffer(), read);
  array.setElements(nullptr, 0);
  EXPECT_EQ(array.getSize(), 0u);
  EXPECT_EQ(array.getBuffer(), read);
}

TYPED_TEST(EveryArrayTest, APooledArrayComesBackEmptyWithItsBufferUnlessItWasLarge) {
  unsigned int const limit = std::is_same_v<TypeParam, ByteArrayValue> ? 10000 : 1000;
  for (unsigned int size : {limit, limit + 1}) {
    TypeParam array;
    array.resize(size);
    array.onDeactivate();
    EXPECT_EQ(array.getElements().getCapacity() != 0, size == limit) << size;
    array.onActivate();
    EXPECT_EQ(array.getSize(), 0u);
    EXPECT_EQ(array.getElements().getCapacity() != 0, size == limit) << size;
  }
}

// ---- ArrayValue itself

TEST(ArrayValueTest, TheAbstractRootHasNoOrderNorItemTypeAndDumpsEveryElementBelowTheClassName) {
  IntegerArrayValue array;
  EXPECT_QUARN_THROW(array.ArrayValue::compare(array), "Compare not implemented");
  EXPECT_QUARN_THROW(array.ArrayValue::getItemValueType(),
                     "getItemValueType() Not implemented for ArrayValue of type 'Marlix.value.IntegerArrayValue'");
  EXPECT_QUARN_THROW(ArrayValue::newInstance(),
                     "It is invalid to create an interface instance: Marlix.value.ArrayValue");
  // dump lists every element below the class name, at the indentation
  WString out;
  textsOf({u"a", nullptr, u""}).dump(out, 2);
  EXPECT_EQ(str(out), u"  Marlix.value.StringArrayValue[3]\n    a\n    (null)\n    ");
  IntegerArrayValue().dump(out, 0);
  EXPECT_EQ(str(out), u"Marlix.value.IntegerArrayValue[0]");
}

TEST(ArrayValueTest, FillFromStringFollowsTheQuotingStepsLiterally) {
  // clang-format off
  struct Case {
    std::u16string text;
    char16_t delimiter;
    bool skipEmpty;
    std::vector<std::u16string> fields;
  } const cases[] = {
      {u"a,\" b,c \",,d", u',', true, {u"a", u"b,c", u"d"}},
      {u"a,\" b,c \",,d", u',', false, {u"a", u"b,c", u"", u"d"}}, {u"\"x\"\"y\",z", u',', true, {u"x\"y", u"z"}},
      {u"\"\",b", u',', false, {u"\",b"}},  // the closing quote is searched one place late
      {u"\"ab\"cd,e", u',', true, {u"ab", u"e"}}, {u"\"abc", u',', true, {u"abc"}},
      {u"\"a,b\"", u'"', false, {u"", u"a,b"}},  // the quote as delimiter turns quoting off
      {u"\t x \u00A0; y\r\n", u';', true, {u"x", u"y"}}, {u"a,", u',', false, {u"a"}},
      {u"a, ", u',', false, {u"a", u""}}, {u"", u',', false, {}},
  };
  // clang-format on
  for (auto const &c : cases) {
    StringArrayValue array = textsOf({u"old"});
    array.fillFromString(u16(c.text), c.delimiter, c.skipEmpty);
    EXPECT_EQ(textsIn(array), c.fields) << utf8(u16(c.text));
  }
}

TEST(ArrayValueTest, EachClassConvertsTheFieldsAndAFailureKeepsWhatCameBefore) {
  IntegerArrayValue ints;
  ints.fillFromString(u16(u" 1, \"2\" ,3"), u',', true);
  EXPECT_EQ(intsIn(ints), (std::vector<int>{1, 2, 3}));
  EXPECT_QUARN_THROW(ints.fillFromString(u16(u"4,,5"), u',', false),
                     "Cannot convert '' to an integer\nIntegerArrayValue::appendValue: Tessary exception caught\n"
                     "ArrayValue::fillFromString: Tessary exception caught");
  EXPECT_EQ(intsIn(ints), std::vector<int>{4});  // what came before the failure stays
  EXPECT_QUARN_THROW(ints.appendValue(textsOf({u"1", u"x"})),
                     "Cannot convert 'x' to an integer\nIntegerArrayValue::appendValue: Tessary exception caught");
  EXPECT_EQ(intsIn(ints), (std::vector<int>{4, 1}));
}

TEST(ArrayValueTest, ElementsComeOutAsScalarsOfTheItemClassAndAsTheirXmlText) {
  StringArrayValue texts = textsOf({u"a<b"});
  WString text, second = u16(u"x");
  EXPECT_TRUE(texts.getIthXMLText(0, text, second));
  EXPECT_EQ(str(text), u"a&lt;b");
  EXPECT_EQ(str(second), u"");
  texts.appendValueFromXMLText(u16(u"a&lt;b"), second);  // read back unchanged, as StringValue does
  EXPECT_EQ(textsIn(texts), (std::vector<std::u16string>{u"a<b", u"a&lt;b"}));

  ByteArrayValue bytes;
  bytes.appendValueFromXMLText(u16(u"300"), second);  // an integer item, low 8 bits kept
  EXPECT_EQ(bytes[0], 44);
  EXPECT_TRUE(bytes.getIthXMLText(0, text, second));
  EXPECT_EQ(str(text), u"44");
  EXPECT_QUARN_THROW(bytes.appendValueFromXMLText(u16(u"z"), second),
                     "Cannot convert 'z' to an integer\nArrayValue::appendValueFromXMLText: Tessary exception caught");
  EXPECT_QUARN_THROW_AS(bytes.getIthXMLText(1, text, second), InvalidIndexException,
                        "Invalid index 1 (last valid index 0)\nByteArrayValue::getIthValue: Tessary exception caught\n"
                        "ArrayValue::getIthXMLText: Tessary exception caught");
  // elements come out as scalars of the item class or converted into a given value
  ObjPtr<Value> item;
  arrayOf<ByteArrayValue>({200}).getIthValue(0, item);
  EXPECT_EQ(item->getClassTag(), IntegerValue::Tag);
  EXPECT_EQ(item->getInteger(), 200);
  StringValue converted;
  arrayOf<DoubleArrayValue>({2.5}).getIthValue(0, converted);
  EXPECT_EQ(str(converted.getString()), u"2.5");
}

}  // namespace
}  // namespace quarn::test
