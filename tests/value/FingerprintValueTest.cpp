// FingerprintValueTest.cpp - the fingerprints: plain arrays under their own class identity
#include <quarn/value/DoubleFingerprintValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/StringFingerprintValue.h>

#include <gtest/gtest.h>

#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

TEST(FingerprintValueTest, LongElementsKeepTheirLowThirtyTwoBits) {
  long const wide[] = {7, 0x100000002L};
  IntegerFingerprintValue const fromLongs(wide, 2);
  EXPECT_EQ(fromLongs[1], 2);
}

TEST(FingerprintValueTest, ComparesByClassNameAgainstItsPlainArrayButHashesAlike) {
  // "Marlix.value.IntegerArrayValue" against "Marlix.value.IntegerFingerprintValue": 'A' - 'F'.
  IntegerFingerprintValue const f = arrayOf<IntegerFingerprintValue>({3, 4});
  IntegerArrayValue const a = arrayOf<IntegerArrayValue>({3, 4});
  EXPECT_EQ(f.compare(a), 'A' - 'F');
  EXPECT_EQ(a.compare(f), 'F' - 'A');
  EXPECT_EQ(f.hash(), a.hash());
  EXPECT_EQ(serialise(f), serialise(a));
  EXPECT_EQ(f.compare(arrayOf<IntegerFingerprintValue>({3, 5})), -1);

  DoubleFingerprintValue const d = arrayOf<DoubleFingerprintValue>({0.5});
  EXPECT_EQ(d.compare(arrayOf<DoubleArrayValue>({0.5})), 'A' - 'F');
  StringFingerprintValue const s = textsOf<StringFingerprintValue>({u"k"});
  EXPECT_EQ(s.compare(textsOf({u"k"})), 'A' - 'F');
  EXPECT_EQ(s.hash(), textsOf({u"k"}).hash());
}

TEST(FingerprintValueTest, AssignmentFromAPlainArrayCopiesElementsAndKeepsTheIdentity) {
  IntegerFingerprintValue f;
  f = arrayOf<IntegerArrayValue>({9, 8});
  EXPECT_EQ(f.getClassTag(), IntegerFingerprintValue::Tag);
  EXPECT_EQ(f.compare(arrayOf<IntegerFingerprintValue>({9, 8})), 0);
  DoubleFingerprintValue d;
  d = arrayOf<DoubleArrayValue>({1.5});
  EXPECT_EQ(d.compare(arrayOf<DoubleFingerprintValue>({1.5})), 0);
  StringFingerprintValue const s(textsOf({u"a", nullptr}));
  EXPECT_EQ(s.compare(textsOf<StringFingerprintValue>({u"a", nullptr})), 0);
  StringFingerprintValue t;
  t = textsOf({u"b"});
  EXPECT_EQ(t.compare(textsOf<StringFingerprintValue>({u"b"})), 0);
}

}  // namespace
}  // namespace quarn::test
