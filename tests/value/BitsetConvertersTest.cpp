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
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

BitsetValue bits(unsigned int n, std::vector<unsigned int> const &on = {}) {
  BitsetValue b(n);
  for (unsigned int p : on) b.setOn(p);
  return b;
}

std::vector<int> positions(BitsetValue const &b) {
  Array<int> p;
  b.getArrayZeroBased(p);
  return {p.begin(), p.end()};
}

IntegerFingerprintValue fingerprint(std::vector<int> const &elements) {
  return IntegerFingerprintValue(elements.data(), static_cast<unsigned int>(elements.size()));
}

TEST(BitsetConvertersTest, IntegerFingerprintSetsItsOneBasedPositionsGrowingOnlyWhenNeeded) {
  struct Case {
    std::vector<int> elements;
    BitsetValue before;
    unsigned int n;
    std::vector<int> on;
  } const cases[] = {
      {{0, -4}, bits(8, {1, 7}), 8, {}},
      {{3, 5}, bits(20, {0}), 20, {2, 4}},
      {{5, 1, 5}, bits(0), 5, {0, 4}},
      {{5}, bits(5, {0}), 5, {4}},                         // n equal to the largest: resize(5) changes nothing
      {{15000000}, bits(20000000), 20000000, {14999999}},  // long enough: the limit does not apply
      {{}, bits(3, {1}), 3, {}},
  };
  for (auto const &c : cases) {
    BitsetValue b = c.before;
    fingerprint(c.elements).assignTo(b);
    EXPECT_EQ(b.getNumBits(), c.n);
    EXPECT_EQ(positions(b), c.on);
  }
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

  BitsetValue big;
  fingerprint({3, 10000000}).assignTo(big);
  EXPECT_EQ(big.getNumBits(), 10000000u);
  EXPECT_EQ(positions(big), (std::vector<int>{2, 9999999}));
}

TEST(BitsetConvertersTest, PositionsRoundTripThroughIntegerListsAndText) {
  BitsetValue const b = bits(12, {0, 4, 11});
  IntegerFingerprintValue f;
  IntegerArrayValue a;
  StringValue s;
  b.assignTo(f);
  b.assignTo(a);
  b.assignTo(s);
  EXPECT_EQ(std::vector<int>(f.getBuffer(), f.getBuffer() + f.getSize()), (std::vector<int>{1, 5, 12}));
  EXPECT_EQ(a.compare(IntegerArrayValue(f.getElements())), 0);
  EXPECT_EQ(str(s.getString()), u"1 5 12");
  for (Value const *source : std::initializer_list<Value const *>{&f, &a, &s}) {
    BitsetValue back;
    source->assignTo(back);
    EXPECT_EQ(back, b) << source->getClassTag().getName();
  }
}

TEST(BitsetConvertersTest, BytesAreEightBitsEachLeastSignificantFirst) {
  unsigned char const raw[] = {0x01, 0x80, 0x00, 0x00, 0x02};
  BitsetValue b = bits(3, {2});
  ByteArrayValue(raw, sizeof raw).assignTo(b);
  EXPECT_EQ(b.getNumBits(), 40u);
  EXPECT_EQ(positions(b), (std::vector<int>{0, 15, 33}));
  ByteArrayValue out;
  bits(12, {0, 11}).assignTo(out);
  ASSERT_EQ(out.getSize(), 2u);
  EXPECT_EQ(out[0], 0x01);
  EXPECT_EQ(out[1], 0x08);
  ByteArrayValue().assignTo(b);
  EXPECT_EQ(b.getNumBits(), 0u);
}

TEST(BitsetConvertersTest, BitsetClassesExchangeTheirBitsAndKeepTheirIdentity) {
  BitsetValue2D grid;
  grid.resize(2, 3);
  grid.setOn(1, 1);
  BitsetValue3D block;
  block.resize(1, 2, 2);
  block.setOn(0, 1, 1);
  BitFingerprintValue f;
  BitsetValue b;
  grid.assignTo(b);
  EXPECT_EQ(b, bits(6, {4}));
  block.assignTo(f);
  EXPECT_EQ(f.getClassTag(), BitFingerprintValue::Tag);
  EXPECT_EQ(static_cast<BitsetValue const &>(f), bits(4, {3}));
  f.assignTo(b);
  EXPECT_EQ(b, bits(4, {3}));
  bits(9, {8}).assignTo(f);
  EXPECT_TRUE(f[8]);
}

TEST(BitsetConvertersTest, ScalarsTakeTheFirstWordAndAnIntegerIsOnePosition) {
  BitsetValue const b = bits(40, {0, 3, 35});
  IntegerValue i;
  DoubleValue d;
  BooleanValue flag;
  b.assignTo(i);
  b.assignTo(d);
  b.assignTo(flag);
  EXPECT_EQ(i.getInteger(), 9);
  EXPECT_EQ(d.getDouble(), 9.0);
  EXPECT_TRUE(flag.getBoolean());
  BitsetValue target = bits(2, {0});
  IntegerValue(4).assignTo(target);
  EXPECT_EQ(target, bits(4, {3}));
}

TEST(BitsetConvertersTest, ArraysGiveTheirFirstElementAndBitsetsBecomeOneElementArrays) {
  BitsetArrayValue arr;
  arr.append(bits(3, {1}));
  arr.append(bits(5));
  BitFingerprintValue f;
  arr.assignTo(f);
  EXPECT_EQ(static_cast<BitsetValue const &>(f), bits(3, {1}));
  BitsetValue b = bits(2, {1});
  EXPECT_QUARN_THROW_AS(
      BitsetArrayValue().assignTo(b), InvalidIndexException,
      "Invalid index 0 (last valid index -1)\nBitsetArrayValue::getIthValue: Tessary exception caught");
  EXPECT_EQ(b, bits(2, {1}));

  BitFingerprintArrayValue fingerprints;
  arr.assignTo(fingerprints);
  ASSERT_EQ(fingerprints.getSize(), 2u);
  EXPECT_EQ(fingerprints[1].getNumBits(), 5u);
  bits(7, {6}).assignTo(arr);
  ASSERT_EQ(arr.getSize(), 1u);
  EXPECT_EQ(arr[0], bits(7, {6}));
  fingerprints.assignTo(arr);
  EXPECT_EQ(arr.getSize(), 2u);
}

TEST(BitsetConvertersTest, NullAndMissingClearEveryBitsetClass) {
  BitsetValue b = bits(9, {2});
  BitsetValue2D grid;
  grid.resize(2, 2);
  BitsetArrayValue arr;
  arr.append(b);
  NullValue().assignTo(b);
  MissingValue().assignTo(grid);
  NullValue().assignTo(arr);
  EXPECT_EQ(b.getNumBits(), 0u);
  EXPECT_EQ(grid.getNumX(), 0u);
  EXPECT_EQ(arr.getSize(), 0u);
}

TEST(BitsetConvertersTest, EveryDocumentedPairIsRegistered) {
  BitsetValue const b;
  BitFingerprintValue const f;
  BitsetValue2D const grid;
  BitsetArrayValue const arr;
  for (Value const *source : std::initializer_list<Value const *>{&b, &f, &grid})
    for (char const *to :
         {"Marlix.value.IntegerFingerprintValue", "Marlix.value.IntegerArrayValue", "Marlix.value.StringValue",
          "Marlix.value.ByteArrayValue", "Marlix.value.IntegerValue", "Marlix.value.DoubleValue",
          "Marlix.value.BooleanValue", "Marlix.value.BitsetArrayValue", "Marlix.value.BitFingerprintArrayValue",
          "Marlix.value.BitsetValue", "Marlix.value.BitFingerprintValue"})
      EXPECT_TRUE(source->canAssignTo(ClassTag(to))) << source->getClassTag().getName() << " -> " << to;
  EXPECT_FALSE(b.canAssignTo(BitsetValue2D::Tag));  // a grid needs extents: no conversion into it
  EXPECT_TRUE(StringValue().canAssignTo(BitFingerprintValue::Tag));
  EXPECT_TRUE(arr.canAssignTo(BitFingerprintArrayValue::Tag));
}

}  // namespace
}  // namespace quarn::test
