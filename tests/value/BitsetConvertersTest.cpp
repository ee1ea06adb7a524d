// BitsetConvertersTest.cpp - conversions into and out of the bitsets: positions, text, bytes, identities, limits
#include <gtest/gtest.h>
#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetArrayValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BitsetValue2D.h>
#include <quarn/value/BitsetValue3D.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>

#include <climits>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/BitsetContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

BitsetValue bits(unsigned int n, std::initializer_list<unsigned int> on = {}) { return bitsetOf(n, on); }

IntegerFingerprintValue fingerprint(std::vector<int> const &elements) {
  return IntegerFingerprintValue(elements.data(), static_cast<unsigned int>(elements.size()));
}

template <class A, class E>
A arrayOf(std::vector<E> const &elements) {
  A a;
  for (auto const &e : elements) a.append(e);
  return a;
}

BitsetValue2D grid(unsigned int x, unsigned int y, int onX = -1, int onY = -1) {
  BitsetValue2D g;
  g.resize(x, y);
  if (onX >= 0) g.setOn(onX, onY);
  return g;
}

// An integer fingerprint sets its one-based positions, growing the bitset only when needed; a bitset gives its
// positions back as integers and text, its first word to scalars, and its bits to the other bitset classes.
TEST(BitsetConvertersTest, ConversionsCarryOneBasedPositionsBytesAndTheFirstWord) {
  BitsetValue3D block;
  block.resize(1, 2, 2);
  block.setOn(0, 1, 1);
  unsigned char const raw[] = {0x01, 0x80, 0x00, 0x00, 0x02}, out[] = {0x01, 0x08};
  int const oneBased[] = {1, 5, 12};
  StringValue text;
  text = u16(u"1 5 12");
  BitsetArrayValue const two = arrayOf<BitsetArrayValue>(std::vector{bits(3, {1}), bits(5)});
  // clang-format off
  expectConversions({
      {make(fingerprint({0, -4})), make(bits(8, {1, 7})), make(bits(8))},
      {make(fingerprint({3, 5})), make(bits(20, {0})), make(bits(20, {2, 4}))},
      {make(fingerprint({5, 1, 5})), make(bits(0)), make(bits(5, {0, 4}))},
      {make(fingerprint({5})), make(bits(5, {0})), make(bits(5, {4}))},  // n equal to the largest: no resize
      {make(fingerprint({15000000})), make(bits(20000000)), make(bits(20000000, {14999999}))},  // no limit: long
      {make(fingerprint({})), make(bits(3, {1})), make(bits(3))},
      {make(fingerprint({3, 10000000})), make(bits(0)), make(bits(10000000, {2, 9999999}))},
      {make(bits(12, {0, 4, 11})), make(fingerprint({7})), make(fingerprint({1, 5, 12}))},
      {make(bits(12, {0, 4, 11})), make(IntegerArrayValue()), make(IntegerArrayValue(oneBased, 3))},
      {make(bits(12, {0, 4, 11})), make(StringValue()), make(text)},
      {make(IntegerArrayValue(oneBased, 3)), make(bits(0)), make(bits(12, {0, 4, 11}))},
      {make(text), make(bits(0)), make(bits(12, {0, 4, 11}))},
      {make(ByteArrayValue(raw, sizeof raw)), make(bits(3, {2})), make(bits(40, {0, 15, 33}))},
      {make(bits(12, {0, 11})), make(ByteArrayValue()), make(ByteArrayValue(out, 2))},
      {make(ByteArrayValue()), make(bits(3, {2})), make(bits(0))},
      {make(grid(2, 3, 1, 1)), make(bits(0)), make(bits(6, {4}))},
      {make(block), make(bitsetOf<BitFingerprintValue>(0)), make(bitsetOf<BitFingerprintValue>(4, {3}))},
      {make(bitsetOf<BitFingerprintValue>(4, {3})), make(bits(1)), make(bits(4, {3}))},
      {make(bits(9, {8})), make(BitFingerprintValue()), make(bitsetOf<BitFingerprintValue>(9, {8}))},
      {make(bits(40, {0, 3, 35})), make(IntegerValue()), make(IntegerValue(9))},
      {make(bits(40, {0, 3, 35})), make(DoubleValue()), make(DoubleValue(9.0))},
      {make(bits(40, {0, 3, 35})), make(BooleanValue()), make(BooleanValue(true))},
      {make(bits(32, {31})), make(IntegerValue()), make(IntegerValue(INT_MIN))},
      {make(bits(32, {31})), make(DoubleValue()), make(DoubleValue(2147483648.0))},
      {make(bits(40, {32})), make(BooleanValue(true)), make(BooleanValue(false))},
      {make(IntegerValue(4)), make(bits(2, {0})), make(bits(4, {3}))},
      {make(two), make(BitFingerprintValue()), make(bitsetOf<BitFingerprintValue>(3, {1}))},
      {make(two), make(BitFingerprintArrayValue()),
       make(arrayOf<BitFingerprintArrayValue>(std::vector{bitsetOf<BitFingerprintValue>(3, {1}),
                                                          bitsetOf<BitFingerprintValue>(5)}))},
      {make(bits(7, {6})), make(two), make(arrayOf<BitsetArrayValue>(std::vector{bits(7, {6})}))},
      {make(NullValue()), make(bits(9, {2})), make(bits(0))},
      {make(MissingValue()), make(grid(2, 2, 1, 1)), make(grid(0, 0))},
      {make(NullValue()), make(two), make(BitsetArrayValue())},
  });
  // clang-format on
}

TEST(BitsetConvertersTest, GrowingPastTenMillionBitsIsRefusedBeforeAnythingChanges) {
  BitsetValue b = bits(4, {1});
  EXPECT_QUARN_THROW(fingerprint({3, 10000001}).assignTo(b),
                     "Cannot convert IntegerFingerprintValues containing numbers greater than 10,000,000 to a "
                     "BitsetValue");
  EXPECT_EQ(b, bits(4, {1}));
  int const large[] = {10000001};
  EXPECT_QUARN_THROW(IntegerArrayValue(large, 1).assignTo(b),
                     "Cannot convert IntegerArrayValues containing numbers greater than 10,000,000 to a BitsetValue");
  BitFingerprintValue f;
  EXPECT_QUARN_THROW(fingerprint({INT_MAX}).assignTo(f),
                     "Cannot convert IntegerFingerprintValues containing numbers greater than 10,000,000 to a "
                     "BitFingerprintValue");
  EXPECT_QUARN_THROW_AS(
      BitsetArrayValue().assignTo(b), InvalidIndexException,
      "Invalid index 0 (last valid index -1)\nBitsetArrayValue::getIthValue: Tessary exception caught");
  EXPECT_EQ(b, bits(4, {1}));
}

TEST(BitsetConvertersTest, EveryDocumentedPairIsRegistered) {
  BitsetValue const b;
  BitFingerprintValue const f;
  BitsetValue2D const grid;
  for (Value const *source : std::initializer_list<Value const *>{&b, &f, &grid})
    for (char const *to :
         {"Marlix.value.IntegerFingerprintValue", "Marlix.value.IntegerArrayValue", "Marlix.value.StringValue",
          "Marlix.value.ByteArrayValue", "Marlix.value.IntegerValue", "Marlix.value.DoubleValue",
          "Marlix.value.BooleanValue", "Marlix.value.BitsetArrayValue", "Marlix.value.BitFingerprintArrayValue",
          "Marlix.value.BitsetValue", "Marlix.value.BitFingerprintValue"})
      EXPECT_TRUE(source->canAssignTo(ClassTag(to))) << source->getClassTag().getName() << " -> " << to;
  EXPECT_FALSE(b.canAssignTo(BitsetValue2D::Tag));  // a grid needs extents: no conversion into it
  EXPECT_TRUE(StringValue().canAssignTo(BitFingerprintValue::Tag));
  EXPECT_TRUE(BitsetArrayValue().canAssignTo(BitFingerprintArrayValue::Tag));
}

}  // namespace
}  // namespace quarn::test
