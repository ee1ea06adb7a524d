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
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

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

std::vector<std::u16string> texts(ArrayValue const &a) {
  Array<WString> out;
  a.getArray(out);
  std::vector<std::u16string> result;
  for (auto const &t : out) result.push_back(str(t));
  return result;
}

Bytes bytesOf(char const *hex) {
  Bytes out;
  for (char *p = const_cast<char *>(hex); *p;) out.push_back(static_cast<unsigned char>(std::strtoul(p, &p, 16)));
  return out;
}

TEST(BitsetArrayValueTest, MoreElementsOrderFirstThenTheFirstElementThatDiffers) {
  struct Case {
    BitsetArrayValue a, b;
    int expected;
  } const cases[] = {
      {array({bits(1), bits(1), bits(1)}), array({bits(1), bits(1)}), -1},
      {array({bits(1), bits(1)}), array({bits(1), bits(1), bits(1)}), 1},
      {array({bits(8), bits(16)}), array({bits(8), bits(8)}), -1},  // the element order: more bits first
      {array({bits(8, {1})}), array({bits(8, {2})}), 1},
      {array({bits(8, {1})}), array({bits(8, {1})}), 0},
      {array({}), array({}), 0},
  };
  for (auto const &c : cases) EXPECT_EQ(c.a.compare(c.b), c.expected);

  BitFingerprintArrayValue f8, f16;
  f8.append(BitFingerprintValue(8));
  f16.append(BitFingerprintValue(16));
  EXPECT_EQ(f8.compare(f16), 1);  // fingerprints: equal or not
  EXPECT_EQ(f16.compare(f8), 1);
  EXPECT_EQ(f8.compare(BitFingerprintArrayValue(f8)), 0);
  EXPECT_NE(f8.compare(array({bits(8)})), 0);  // another class
}

TEST(BitsetArrayValueTest, AppendValueSplicesArraysAndConvertsSingleValues) {
  struct Case {
    char const *what;
    ObjPtr<Value> value;
    std::vector<std::u16string> added;
  };
  std::vector<Case> cases;
  cases.push_back({"one bitset", ObjPtr<Value>(bits(5, {0, 4}).cloneValue()), {u"1 5"}});
  cases.push_back({"array of two", ObjPtr<Value>(array({bits(3, {1}), bits(4)}).cloneValue()), {u"2", u""}});
  cases.push_back({"array of one", ObjPtr<Value>(array({bits(3, {2})}).cloneValue()), {u"3"}});
  cases.push_back({"empty array", ObjPtr<Value>(array({}).cloneValue()), {}});
  cases.push_back({"text", ObjPtr<Value>(StringValue("1, 3").cloneValue()), {u"1 3"}});
  int const list[] = {3, 5};
  cases.push_back({"integer array", ObjPtr<Value>(IntegerArrayValue(list, 2).cloneValue()), {u"3", u"5"}});
  cases.push_back({"null", ObjPtr<Value>(NullValue().cloneValue()), {}});
  for (auto const &c : cases) {
    BitsetArrayValue a = array({bits(2, {0})});
    a.appendValue(*c.value);
    std::vector<std::u16string> expected{u"1"};
    expected.insert(expected.end(), c.added.begin(), c.added.end());
    EXPECT_EQ(texts(a), expected) << c.what;
  }
  BitsetArrayValue self = array({bits(2, {0}), bits(2, {1})});
  self.appendValue(self);
  EXPECT_EQ(texts(self), (std::vector<std::u16string>{u"1", u"2", u"1", u"2"}));
}

TEST(BitsetArrayValueTest, ElementOperationsAreCheckedAndAnnotated) {
  BitsetArrayValue a = array({bits(33, {31}), bits(4, {1})});
  EXPECT_EQ(a.getIthInteger(0), INT_MIN);
  EXPECT_EQ(a.getIthDouble(0), 2147483648.0);
  EXPECT_TRUE(a.getIthBoolean(1));
  WString text(u16(u"old"));
  a.getIthString(1, text);
  EXPECT_EQ(str(text), u"2");
  EXPECT_EQ(a.getSize(), 2u);
  EXPECT_EQ(a.getItemValueType(), BitsetValue::Tag);
  EXPECT_EQ(BitFingerprintArrayValue().getItemValueType(), BitFingerprintValue::Tag);

  char const *const message = "Invalid index 2 (last valid index 1)\nBitsetArrayValue::%s: Tessary exception caught";
  auto expected = [&](char const *operation) {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer, message, operation);
    return std::string(buffer);
  };
  BitsetValue target;
  ObjPtr<Value> out;
  EXPECT_QUARN_THROW_AS(a.getIthInteger(2), InvalidIndexException, expected("getIthInteger"));
  EXPECT_QUARN_THROW_AS(a.getIthString(2, text), InvalidIndexException, expected("getIthString"));
  EXPECT_QUARN_THROW_AS(a.getIthValue(2, target), InvalidIndexException, expected("getIthValue"));
  EXPECT_QUARN_THROW_AS(a.getIthValue(2, out), InvalidIndexException, expected("getIthValue"));
  EXPECT_QUARN_THROW_AS(a.setIthValue(2, target), InvalidIndexException, expected("setIthValue"));
  EXPECT_QUARN_THROW_AS(a.remove(2), InvalidIndexException, expected("remove"));
  EXPECT_QUARN_THROW_AS(
      a.insertValue(3, target), InvalidIndexException,
      "Invalid index 3 (last valid index 1)\nBitsetArrayValue::insertValue: Tessary exception caught");
  EXPECT_QUARN_THROW(a.setIthValue(0, IntegerValue(20000000)),
                     "Cannot convert IntegerValues containing numbers greater than 10,000,000 to a BitsetValue\n"
                     "BitsetArrayValue::setIthValue: Tessary exception caught");
  EXPECT_EQ(texts(a), (std::vector<std::u16string>{u"32", u"2"}));  // unchanged
}

TEST(BitsetArrayValueTest, SetInsertRemoveAndResizeWorkOnWholeBitsets) {
  BitsetArrayValue a = array({bits(4, {0}), bits(4, {1})});
  a.setIthValue(0, StringValue("3"));
  a.insertValue(1, bits(6, {5}));
  EXPECT_EQ(texts(a), (std::vector<std::u16string>{u"3", u"6", u"2"}));
  a.remove(0);
  EXPECT_EQ(texts(a), (std::vector<std::u16string>{u"6", u"2"}));
  a.setIthValue(0, a[1]);
  EXPECT_EQ(a[0], bits(4, {1}));
  a.resize(4);
  EXPECT_EQ(a[3].getNumBits(), 0u);  // new elements are empty bitsets
  a.resize(1);
  EXPECT_EQ(a.getSize(), 1u);
  BitsetValue item;
  a.getIthValue(0, item);
  EXPECT_EQ(item, bits(4, {1}));
  ObjPtr<Value> copy;
  a.getIthValue(0, copy);
  EXPECT_EQ(copy->getClassTag(), BitsetValue::Tag);
  EXPECT_EQ(copy->compare(a[0]), 0);
}

TEST(BitsetArrayValueTest, EveryArrayCoercionGivesOneEntryPerElement) {
  BitsetArrayValue const a = array({bits(8, {0, 2}), bits(0)});
  Array<int> ints;
  Array<double> doubles;
  Array<bool> flags;
  a.getArray(ints);
  a.getArray(doubles);
  a.getArray(flags);
  EXPECT_EQ(std::vector<int>(ints.begin(), ints.end()), (std::vector<int>{5, 0}));
  EXPECT_EQ(std::vector<double>(doubles.begin(), doubles.end()), (std::vector<double>{5.0, 0.0}));
  EXPECT_EQ(std::vector<bool>(flags.begin(), flags.end()), (std::vector<bool>{true, false}));
  EXPECT_EQ(texts(a), (std::vector<std::u16string>{u"1 3", u""}));
  EXPECT_EQ(a.hash(), bits(8, {0, 2}).hash() * 31u + bits(0).hash());
}

TEST(BitsetArrayValueTest, PayloadIsTheCountThenEachBitsetsOwnPayload) {
  struct Case {
    BitsetArrayValue a;
    char const *hex;
  } const cases[] = {
      {array({}), "00"},
      {array({bits(5, {0}), bits(0)}), "08 14 04 04 00 00"},
  };
  for (auto const &c : cases) {
    Bytes const bytes = bytesOf(c.hex);
    EXPECT_EQ(serialise(c.a), bytes);
    for (int chunk : kChunkSizes) {
      ChunkedInputStream in(bytes, chunk);
      BitsetArrayValue read = array({bits(1)});
      read.deserialize(in);
      EXPECT_EQ(read.compare(c.a), 0);
      EXPECT_TRUE(in.atEnd());
    }
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      BitsetArrayValue read = array({bits(3, {2})});
      ChunkedInputStream in(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(cut)), 2);
      EXPECT_THROW(read.deserialize(in), Exception);
      EXPECT_EQ(texts(read), (std::vector<std::u16string>{u"3"}));
    }
  }
  BitsetArrayValue read;
  ChunkedInputStream negative(bytesOf("FC"), 1);
  EXPECT_QUARN_THROW(read.deserialize(negative), "Invalid array element count -1");
  ChunkedInputStream hostile(bytesOf("03 00 CA 9A 3B 14 04 04"), 3);  // a billion elements, one present
  EXPECT_QUARN_THROW(read.deserialize(hostile), "EOF reading int header");
}

TEST(BitsetArrayValueTest, ElementsTravelAsTheirOwnXmlTextAndFromDelimitedText) {
  BitsetArrayValue a = array({bits(10, {0, 2, 4})});
  WString text, second;
  ASSERT_TRUE(a.getIthXMLText(0, text, second));
  EXPECT_EQ(str(text), u"10 1 3 5");
  a.appendValueFromXMLText(text, second);
  EXPECT_EQ(a[1], a[0]);
  EXPECT_FALSE(a.hasXMLText());
  a.fillFromString(u16(u"1 3; 2;"), ';', true);
  EXPECT_EQ(texts(a), (std::vector<std::u16string>{u"1 3", u"2"}));
}

TEST(BitsetArrayValueTest, PoolFreesArraysOfMoreThanAThousandElements) {
  struct Case {
    unsigned int elements;
    bool kept;
  } const cases[] = {{1000, true}, {1001, false}};
  for (auto const &c : cases) {
    BitsetArrayValue *first = BitsetArrayValue::newInstance();
    first->resize(c.elements);
    first->deleteInstance();
    BitsetArrayValue *again = BitsetArrayValue::newInstance();
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->getSize(), 0u);
    EXPECT_EQ(again->getElements().getCapacity() >= c.elements, c.kept);
    again->deleteInstance();
  }
}

}  // namespace
}  // namespace quarn::test
