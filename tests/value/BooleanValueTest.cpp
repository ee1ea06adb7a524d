// BooleanValueTest.cpp - coercions, order and bytes of the boolean value
#include <gtest/gtest.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/IntegerValue.h>

#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

TEST(BooleanValueTest, CoercesToOneOrZeroAndFalseSortsFirst) {
  for (bool b : {false, true}) {
    BooleanValue v(b);
    EXPECT_EQ(v.getInteger(), b ? 1 : 0);
    EXPECT_EQ(v.getDouble(), b ? 1.0 : 0.0);
    EXPECT_EQ(textOf(v), b ? u"true" : u"false");
    EXPECT_EQ(v.hash(), b ? 1u : 0u);
    EXPECT_EQ(serialise(v), Bytes{static_cast<unsigned char>(b)});
  }
  EXPECT_EQ(BooleanValue(false).compare(BooleanValue(true)), -1);
  EXPECT_EQ(BooleanValue(true).compare(BooleanValue(false)), 1);
  EXPECT_EQ(BooleanValue(true).compare(IntegerValue(1)), 'I' - 'B');
}

TEST(BooleanValueTest, AnyNonZeroByteReadsTrue) {
  ChunkedInputStream in({0x05}, 1);
  BooleanValue read;
  read.deserialize(in);
  EXPECT_TRUE(read.getBoolean());
}

}  // namespace
}  // namespace quarn::test
