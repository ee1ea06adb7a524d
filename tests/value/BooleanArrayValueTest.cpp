// BooleanArrayValueTest.cpp - conversions, order, hash and bytes of the boolean array
#include <quarn/value/BooleanArrayValue.h>
#include <quarn/value/ByteArrayValue.h>

#include <gtest/gtest.h>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

TEST(BooleanArrayValueTest, FalseOrdersBeforeTrue) {
  EXPECT_EQ(arrayOf<BooleanArrayValue>({false, true}).compare(arrayOf<BooleanArrayValue>({true, false})), -1);
  EXPECT_EQ(arrayOf<BooleanArrayValue>({true}).compare(arrayOf<BooleanArrayValue>({false})), 1);
}

TEST(BooleanArrayValueTest, HashesAsTheBytesZeroAndOne) {
  EXPECT_EQ(arrayOf<BooleanArrayValue>({true, false, true}).hash(), 31u * 31u + 1u);
  EXPECT_EQ(arrayOf<BooleanArrayValue>({true, false, true}).hash(), arrayOf<ByteArrayValue>({1, 0, 1}).hash());
}

TEST(BooleanArrayValueTest, PayloadIsTheCountThenOneByteEachAndAnyNonZeroByteReadsTrue) {
  expectPayload(arrayOf<BooleanArrayValue>({true, false}), "08 01 00");
  for (Bytes const &bytes : {golden("08 02 00"), golden("08 FF 00")}) {
    MemoryInputStream memory(bytes.data(), 3);
    ChunkedInputStream chunked(bytes, 1);
    BooleanArrayValue fromMemory, fromChunks;
    fromMemory.deserialize(memory);
    fromChunks.deserialize(chunked);
    EXPECT_EQ(fromMemory.compare(arrayOf<BooleanArrayValue>({true, false})), 0);
    EXPECT_EQ(fromChunks.compare(fromMemory), 0);
    EXPECT_EQ(serialise(fromMemory), golden("08 01 00"));
  }
}

}  // namespace
}  // namespace quarn::test
