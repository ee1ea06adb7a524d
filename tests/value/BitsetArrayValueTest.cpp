// BitsetArrayValueTest.cpp - element operations, splicing, order, hash, bytes and pooling of the bitset arrays
#include <gtest/gtest.h>
#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetArrayValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>

#include <climits>
#include <string>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using Texts = std::vector<std::u16string>;

BitsetValue bits(unsigned int n, std::vector<unsigned int> const &on = {}) {
  BitsetValue b(n);
  for (unsigned int p : on) b.setOn(p);
  return b;
}

BitsetArrayValue array(std::vector<BitsetValue> const &elements) {
  BitsetArrayValue a;
  for (auto const &e : elements) a.append(e);
  return a;
}

template <class T>
std::vector<T> listOf(ArrayValue const &a) {
  Array<T> out;
  a.getArray(out);
  return std::vector<T>(out.begin(), out.end());
}

Texts texts(ArrayValue const &a) {
  Texts result;
  for (auto const &t : listOf<WString>(a)) result.push_back(str(t));
  return result;
}

TEST(BitsetArrayValueTest, MoreElementsOrderFirstThenTheFirstElementThatDiffers) {
  // clang-format off
  struct Case { BitsetArrayValue a, b; int expected; } const cases[] = {
      {array({bits(1), bits(1), bits(1)}), array({bits(1), bits(1)}), -1},
      {array({bits(1), bits(1)}), array({bits(1), bits(1), bits(1)}), 1},
      {array({bits(8), bits(16)}), array({bits(8), bits(8)}), -1},  // the element order: more bits first
      {array({bits(8, {1})}), array({bits(8, {2})}), 1}, {array({bits(8, {1})}), array({bits(8, {1})}), 0},
      {array({}), array({}), 0},
  };
  // clang-format on
  for (auto const &c : cases) EXPECT_EQ(c.a.compare(c.b), c.expected);
  BitFingerprintArrayValue f8, f16;
  f8.append(BitFingerprintValue(8));
  f16.append(BitFingerprintValue(16));
  EXPECT_EQ(f8.compare(f16), 1);  // fingerprints: equal or not
  EXPECT_EQ(f16.compare(f8), 1);
  EXPECT_NE(f8.compare(array({bits(8)})), 0);  // another class
  EXPECT_EQ(array({bits(8, {0, 2}), bits(0)}).hash(), bits(8, {0, 2}).hash() * 31u + bits(0).hash());
}

TEST(BitsetArrayValueTest, AppendValueSplicesArraysAndConvertsSingleValues) {
  int const list[] = {3, 5};
  struct Case {
    char const *what;
    Make value;
    Texts added;
  } const cases[] = {
      {"one bitset", make(bits(5, {0, 4})), {u"1 5"}},
      {"array of two", make(array({bits(3, {1}), bits(4)})), {u"2", u""}},
      {"array of one", make(array({bits(3, {2})})), {u"3"}},
      {"empty array", make(array({})), {}},
      {"text", make(StringValue("1, 3")), {u"1 3"}},
      {"integer array", make(IntegerArrayValue(list, 2)), {u"3", u"5"}},
      {"null", make(NullValue()), {}},
  };
  for (auto const &c : cases) {
    BitsetArrayValue a = array({bits(2, {0})});
    ObjPtr<Value> value(c.value());
    a.appendValue(*value);
    Texts expected{u"1"};
    expected.insert(expected.end(), c.added.begin(), c.added.end());
    EXPECT_EQ(texts(a), expected) << c.what;
  }
  BitsetArrayValue self = array({bits(2, {0}), bits(2, {1})});
  self.appendValue(self);
  EXPECT_EQ(texts(self), (Texts{u"1", u"2", u"1", u"2"}));
}

TEST(BitsetArrayValueTest, ElementOperationsAreCheckedAndAnnotated) {
  BitsetArrayValue a = array({bits(33, {31}), bits(4, {1})});
  EXPECT_EQ(a.getIthInteger(0), INT_MIN);
  EXPECT_EQ(a.getIthDouble(0), 2147483648.0);
  EXPECT_TRUE(a.getIthBoolean(1));
  WString text(u16(u"old"));
  a.getIthString(1, text);
  EXPECT_EQ(str(text), u"2");
  auto expected = [](std::string const &operation, int index = 2) {
    return "Invalid index " + std::to_string(index) + " (last valid index 1)\nBitsetArrayValue::" + operation +
           ": Tessary exception caught";
  };
  BitsetValue target;
  ObjPtr<Value> out;
  EXPECT_QUARN_THROW_AS(a.getIthInteger(2), InvalidIndexException, expected("getIthInteger"));
  EXPECT_QUARN_THROW_AS(a.getIthString(2, text), InvalidIndexException, expected("getIthString"));
  EXPECT_QUARN_THROW_AS(a.getIthValue(2, target), InvalidIndexException, expected("getIthValue"));
  EXPECT_QUARN_THROW_AS(a.getIthValue(2, out), InvalidIndexException, expected("getIthValue"));
  EXPECT_QUARN_THROW_AS(a.setIthValue(2, target), InvalidIndexException, expected("setIthValue"));
  EXPECT_QUARN_THROW_AS(a.remove(2), InvalidIndexException, expected("remove"));
  EXPECT_QUARN_THROW_AS(a.insertValue(3, target), InvalidIndexException, expected("insertValue", 3));
  EXPECT_QUARN_THROW(a.setIthValue(0, IntegerValue(20000000)),
                     "Cannot convert IntegerValues containing numbers greater than 10,000,000 to a BitsetValue\n"
                     "BitsetArrayValue::setIthValue: Tessary exception caught");
  EXPECT_EQ(texts(a), (Texts{u"32", u"2"}));  // unchanged
}

TEST(BitsetArrayValueTest, EditsCoercionsAndTextsWorkOnWholeBitsets) {
  BitsetArrayValue a = array({bits(4, {0}), bits(4, {1})});
  a.setIthValue(0, StringValue("3"));
  a.insertValue(1, bits(6, {5}));
  EXPECT_EQ(texts(a), (Texts{u"3", u"6", u"2"}));
  a.remove(0);
  EXPECT_EQ(texts(a), (Texts{u"6", u"2"}));
  a.setIthValue(0, a[1]);
  EXPECT_EQ(a[0], bits(4, {1}));
  a.resize(4);
  EXPECT_EQ(a[3].getNumBits(), 0u);  // new elements are empty bitsets
  a.resize(1);
  ASSERT_EQ(a.getSize(), 1u);
  BitsetValue item;
  a.getIthValue(0, item);
  EXPECT_EQ(item, bits(4, {1}));
  ObjPtr<Value> copy;
  a.getIthValue(0, copy);
  EXPECT_EQ(copy->getClassTag(), BitsetValue::Tag);
  EXPECT_EQ(copy->compare(a[0]), 0);
  BitsetArrayValue const b = array({bits(8, {0, 2}), bits(0)});  // every coercion gives one entry per element
  EXPECT_EQ(listOf<int>(b), (std::vector<int>{5, 0}));
  EXPECT_EQ(listOf<double>(b), (std::vector<double>{5.0, 0.0}));
  EXPECT_EQ(listOf<bool>(b), (std::vector<bool>{true, false}));
  EXPECT_EQ(texts(b), (Texts{u"1 3", u""}));
  // elements travel as their own XML text and from delimited text
  a = array({bits(10, {0, 2, 4})});
  WString text, second;
  ASSERT_TRUE(a.getIthXMLText(0, text, second));
  EXPECT_EQ(str(text), u"10 1 3 5");
  a.appendValueFromXMLText(text, second);
  EXPECT_EQ(a[1], a[0]);
  EXPECT_FALSE(a.hasXMLText());
  a.fillFromString(u16(u"1 3; 2;"), ';', true);
  EXPECT_EQ(texts(a), (Texts{u"1 3", u"2"}));
  EXPECT_QUARN_THROW(a.fillFromString(u16(u"1;2147483647"), ';', true),  // ten characters, 256 MB of words
                     "Cannot convert StringValues containing numbers greater than 10,000,000 to a BitsetValue\n"
                     "BitsetArrayValue::appendValue: Tessary exception caught\n"
                     "ArrayValue::fillFromString: Tessary exception caught");
  EXPECT_EQ(texts(a), (Texts{u"1"}));  // the fields before the refused one
}

TEST(BitsetArrayValueTest, PayloadIsTheCountThenEachBitsetsOwnPayload) {
  for (auto const &[a, hex] :
       {std::pair{array({}), "00"}, std::pair{array({bits(5, {0}), bits(0)}), "08 14 04 04 00 00"}}) {
    EXPECT_EQ(hexOf(serialise(a)), hex);
    readEach<BitsetArrayValue>(golden(hex), 2, [&](BitsetArrayValue const &read) { EXPECT_EQ(read.compare(a), 0); });
  }
  BitsetArrayValue read;
  ChunkedInputStream negative(golden("FC"), 1);
  EXPECT_QUARN_THROW(read.deserialize(negative), "Invalid array element count -1");
  ChunkedInputStream hostile(golden("03 00 CA 9A 3B 14 04 04"), 3);  // a billion elements, one present
  EXPECT_QUARN_THROW(read.deserialize(hostile), "EOF reading int header");
}

TEST(BitsetArrayValueTest, PoolFreesArraysOfMoreThanAThousandElements) {
  for (auto [elements, kept] : {std::pair{1000u, true}, std::pair{1001u, false}}) {
    BitsetArrayValue *first = BitsetArrayValue::newInstance();
    first->resize(elements);
    first->deleteInstance();
    BitsetArrayValue *again = BitsetArrayValue::newInstance();
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->getSize(), 0u);
    EXPECT_EQ(again->getElements().getCapacity() >= elements, kept);
    again->deleteInstance();
  }
}

}  // namespace
}  // namespace quarn::test
