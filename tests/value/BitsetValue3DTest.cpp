// BitsetValue3DTest.cpp - the block view of a bitset: cell indices, resize keeping linear positions, no pool
#include <gtest/gtest.h>
#include <quarn/value/BitsetValue3D.h>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

TEST(BitsetValue3DTest, ResizeKeepsLinearPositionsNotCoordinates) {
  BitsetValue3D b;
  b.resize(2, 2, 2);
  b.setOn(1, 1, 1);         // bit 1 * 4 + 1 * 2 + 1 = 7
  b.getAt(0, 1, 0) = true;  // bit 2
  EXPECT_TRUE(b[7]);
  b.resize(2, 2, 3);  // plane 6: bit 7 is now (1, 0, 1), bit 2 is (0, 0, 2)
  EXPECT_EQ(b.getNumBits(), 12u);
  EXPECT_TRUE(b.getAt(1, 0, 1));
  EXPECT_TRUE(b.getAt(0, 0, 2));
  EXPECT_FALSE(b.getAt(1, 1, 1));
  b.setOff(1, 0, 1);
  EXPECT_EQ(b.getNumBitsOn(), 1u);
  b.resize(1, 1, 2);  // bit 2 falls beyond the new size
  EXPECT_TRUE(b.isEmpty());
  EXPECT_QUARN_THROW(b.resize(65536, 65536, 2), "BitsetValue3D::resize: Bad Allocation Memory allocation failed");
  EXPECT_EQ(b.getNumZ(), 2u);
}

TEST(BitsetValue3DTest, IsMadeAndDestroyedWithoutAPool) {
  long const live = BitsetValue3D::m_leakDetector.getLiveCount();
  BitsetValue3D *b = BitsetValue3D::newInstance();
  b->resize(1, 2, 3);
  b->setOn(0, 1, 2);
  Owned<Value> copy(b->cloneValue());
  EXPECT_EQ(BitsetValue3D::m_leakDetector.getLiveCount(), live + 2);
  auto &typed = static_cast<BitsetValue3D &>(*copy);
  EXPECT_EQ(typed.getNumY(), 2u);
  EXPECT_TRUE(typed.getAt(0, 1, 2));
  b->deleteInstance();
  copy.reset();
  EXPECT_EQ(BitsetValue3D::m_leakDetector.getLiveCount(), live);
}

TEST(BitsetValue3DTest, AssignmentCopiesAllExtentsAndClearEmptiesThem) {
  BitsetValue3D source;
  source.resize(2, 3, 4);
  source.setOn(1, 2, 3);
  BitsetValue3D target;
  source.assignTo(target);
  EXPECT_EQ(target.getNumX(), 2u);
  EXPECT_EQ(target.getNumY(), 3u);
  EXPECT_EQ(target.getNumZ(), 4u);
  EXPECT_TRUE(target.getAt(1, 2, 3));
  target.clear();
  EXPECT_EQ(target.getNumX(), 0u);
  EXPECT_EQ(target.getNumBits(), 0u);
}

}  // namespace
}  // namespace quarn::test
