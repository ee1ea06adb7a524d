// BitFingerprintValueTest.cpp - the bit fingerprint's identity and its equal-or-not order
#include <gtest/gtest.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetValue.h>

#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

BitFingerprintValue fingerprint(unsigned int n, std::initializer_list<unsigned int> on) {
  BitFingerprintValue f(n);
  for (unsigned int p : on) f.setOn(p);
  return f;
}

TEST(BitFingerprintValueTest, ComparesEqualOrNotWithNoOrderByLength) {
  struct Case {
    BitFingerprintValue a, b;
    int expected;  // both ways
  } const cases[] = {
      {fingerprint(8, {}), fingerprint(16, {}), 1},
      {fingerprint(8, {1}), fingerprint(8, {2}), 1},
      {fingerprint(8, {1}), fingerprint(8, {1}), 0},
      {fingerprint(0, {}), fingerprint(0, {}), 0},
  };
  for (auto const &c : cases) {
    EXPECT_EQ(c.a.compare(c.b), c.expected);
    EXPECT_EQ(c.b.compare(c.a), c.expected);
  }
  BitsetValue plain(8);
  // "...BitsetValue" against "...BitFingerprintValue": 's' - 'F'.
  EXPECT_EQ(fingerprint(8, {}).compare(plain), 's' - 'F');
  EXPECT_EQ(plain.compare(fingerprint(8, {})), 'F' - 's');
}

TEST(BitFingerprintValueTest, KeepsItsIdentityWhenGivenPlainBitsAndNamesItsOwnArray) {
  BitFingerprintValue f;
  BitsetValue plain(10);
  plain.setOn(9);
  f = plain;
  EXPECT_EQ(f.getClassTag(), BitFingerprintValue::Tag);
  EXPECT_TRUE(f[9]);
  EXPECT_STREQ(f.getArrayValueType().getName(), "Marlix.value.BitFingerprintArrayValue");
  EXPECT_STREQ(plain.getArrayValueType().getName(), "Marlix.value.BitsetArrayValue");
  EXPECT_EQ(serialise(f), serialise(plain));
  EXPECT_EQ(f.hash(), plain.hash());
}

}  // namespace
}  // namespace quarn::test
