// BitsetValue2D.h - a bitset seen as a grid of numX by numY cells
//
// Cell (x, y) is bit x * numY + y of the underlying bitset, so a row of y
// values is one run of bits. resize(numX, numY) keeps every cell that lies
// inside both the old and the new grid at its coordinates (the bits move);
// new cells are off. The cell operations compute the bit index and use the
// bit operations of BitsetValue: they check no extent of their own, only the
// word index (InvalidIndexException(word index, word count - 1)).
//
// The extents are not part of the value's identity beyond the bits: compare,
// hash, the payload and the XML text are BitsetValue's (n and the words), so
// a grid read from a stream or from XML text keeps the extents it had and
// takes the bits. assignToSameClass copies the bits and both extents.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ValueGlue.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BitsetValue2D : public ValueGlue<BitsetValue2D, BitsetValue> {
  QUARN_VALUE_CLASS(BitsetValue2D, "Marlix.value.BitsetValue2D", PooledClassImp<BitsetValue2D, -1>)

 public:
  /// An empty grid (0 by 0).
  BitsetValue2D() = default;
  BitsetValue2D(BitsetValue2D const &other) : Glue(other), m_numX(other.m_numX), m_numY(other.m_numY) {}
  ~BitsetValue2D() override;
  /// Copies the bits and both extents.
  BitsetValue2D &operator=(BitsetValue2D const &other);

  /// Copies the bits and both extents.
  void assignToSameClass(Value &target) const override;
  /// No bits, a 0 by 0 grid.
  void clear() override;
  void onActivate() override;

  unsigned int getNumX() const noexcept { return m_numX; }
  unsigned int getNumY() const noexcept { return m_numY; }
  /// A numX by numY grid keeping the cells the old and new grids share; a grid
  /// of more than 2^32 - 1 cells throws MemoryException (annotated).
  void resize(unsigned int numX, unsigned int numY);

  reference getAt(int x, int y) { return reference(*this, cell(x, y)); }
  bool getAt(int x, int y) const { return (*this)[cell(x, y)]; }
  void set(int x, int y, bool on) { BitsetValue::set(cell(x, y), on); }
  void setOn(int x, int y) { BitsetValue::setOn(cell(x, y)); }
  void setOff(int x, int y) { BitsetValue::setOff(cell(x, y)); }
  using BitsetValue::set;
  using BitsetValue::setOff;
  using BitsetValue::setOn;

 private:
  /// The bit of cell (x, y), in wrapping 32-bit arithmetic as the storage indexes.
  unsigned int cell(int x, int y) const noexcept {
    return static_cast<unsigned int>(x) * m_numY + static_cast<unsigned int>(y);
  }

  unsigned int m_numX = 0;
  unsigned int m_numY = 0;
};

}  // namespace quarn
