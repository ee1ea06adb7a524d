// BitsetValue2DTest.cpp - the grid view of a bitset: cell indices, resize keeping coordinates, copies
#include <gtest/gtest.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BitsetValue2D.h>

#include <vector>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using Cells = std::vector<std::pair<int, int>>;

BitsetValue2D grid(unsigned int numX, unsigned int numY, Cells const &on) {
  BitsetValue2D g;
  g.resize(numX, numY);
  for (auto [x, y] : on) g.setOn(x, y);
  return g;
}

std::vector<int> positions(BitsetValue const &b) {
  Array<int> p;
  b.getArrayZeroBased(p);
  return {p.begin(), p.end()};
}

TEST(BitsetValue2DTest, CellXYIsBitXTimesNumYPlusY) {
  BitsetValue2D g = grid(2, 3, {{0, 2}, {1, 0}});
  EXPECT_EQ(positions(g), (std::vector<int>{2, 3}));
  EXPECT_TRUE(g.getAt(1, 0));
  g.getAt(1, 2) = true;
  g.set(0, 2, false);
  g.setOff(1, 0);
  EXPECT_EQ(positions(g), (std::vector<int>{5}));
  EXPECT_TRUE(g.getAt(0, 5));  // no extent check: (0, 5) is bit 5, cell (1, 2)
  EXPECT_QUARN_THROW_AS(g.setOn(20, 0), InvalidIndexException, "Invalid index 1 (last valid index 0)");
}

TEST(BitsetValue2DTest, ResizeKeepsTheCellsBothGridsShare) {
  struct Case {
    unsigned int numX, numY;
    std::vector<int> bits;
  } const cases[] = {
      {3, 2, {2}},        // (1, 0) moves to bit 2; (0, 2) and (1, 2) fall outside
      {2, 3, {2, 3, 5}},  // unchanged
      {4, 4, {2, 4, 6}},  // (0, 2) -> 2, (1, 0) -> 4, (1, 2) -> 6
      {1, 3, {2}},       {0, 0, {}},
  };
  for (auto const &c : cases) {
    BitsetValue2D g = grid(2, 3, {{0, 2}, {1, 0}, {1, 2}});
    g.resize(c.numX, c.numY);
    EXPECT_EQ(g.getNumX(), c.numX);
    EXPECT_EQ(g.getNumY(), c.numY);
    EXPECT_EQ(g.getNumBits(), c.numX * c.numY);
    EXPECT_EQ(positions(g), c.bits) << c.numX << "x" << c.numY;
  }
}

TEST(BitsetValue2DTest, GridBeyondThirtyTwoBitsOfCellsIsRefusedAndKeepsTheGrid) {
  BitsetValue2D g = grid(2, 3, {{1, 1}});
  EXPECT_QUARN_THROW(g.resize(65536, 65537), "BitsetValue2D::resize: Bad Allocation Memory allocation failed");
  EXPECT_EQ(g.getNumX(), 2u);
  EXPECT_EQ(positions(g), (std::vector<int>{4}));
}

TEST(BitsetValue2DTest, CopiesCarryTheExtentsWhileOrderAndHashSeeOnlyTheBits) {
  BitsetValue2D const g = grid(2, 3, {{1, 1}});
  BitsetValue2D target;
  g.assignTo(target);
  EXPECT_EQ(target.getNumX(), 2u);
  EXPECT_EQ(target.getNumY(), 3u);
  Owned<Value> clone(g.cloneValue());
  EXPECT_EQ(static_cast<BitsetValue2D &>(*clone).getNumY(), 3u);

  BitsetValue2D other = grid(3, 2, {{2, 0}});  // also bit 4 of 6
  EXPECT_EQ(g.compare(other), 0);
  EXPECT_EQ(g.hash(), other.hash());
  BitsetValue plain(6);
  EXPECT_EQ(g.compare(plain), -'2');  // another class: "...BitsetValue" against "...BitsetValue2D"
  EXPECT_EQ(plain.compare(g), '2');
}

TEST(BitsetValue2DTest, RecycledGridIsEmpty) {
  BitsetValue2D *g = BitsetValue2D::newInstance();
  g->resize(4, 5);
  g->deleteInstance();
  BitsetValue2D *again = BitsetValue2D::newInstance();
  EXPECT_EQ(again->getNumX(), 0u);
  EXPECT_EQ(again->getNumBits(), 0u);
  again->deleteInstance();
}

}  // namespace
}  // namespace quarn::test
