// BitsetValue3D.h - a bitset seen as a block of a by b by c cells
//
// Cell (x, y, z) is bit x * (b * c) + y * c + z of the underlying bitset.
// Unlike the two-dimensional grid, resize(a, b, c) does not move bits: each
// cell keeps its linear position, not its coordinates (a bit stays where it
// was; bits past the new size are dropped, new ones are off). The cell
// operations check no extent of their own, only the word index
// (InvalidIndexException(word index, word count - 1)).
//
// Not pooled: newInstance() makes a new object and deleteInstance() destroys
// it. compare, hash, the payload and the XML text are BitsetValue's; the
// extents travel only through assignToSameClass and copies.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/Export.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ValueGlue.h>

namespace quarn {

/// Not pooled: create with newInstance(), destroy with deleteInstance().
class QUARN_API BitsetValue3D : public ValueGlue<BitsetValue3D, BitsetValue> {
  QUARN_VALUE_CLASS(BitsetValue3D, "Marlix.value.BitsetValue3D", ClassImp<BitsetValue3D>)

 public:
  /// An empty block (0 by 0 by 0).
  BitsetValue3D() = default;
  BitsetValue3D(BitsetValue3D const &other)
      : Glue(other), m_numX(other.m_numX), m_numY(other.m_numY), m_numZ(other.m_numZ), m_plane(other.m_plane) {}
  ~BitsetValue3D() override;
  /// Copies the bits and all four extent fields.
  BitsetValue3D &operator=(BitsetValue3D const &other);

  /// Copies the bits and all four extent fields.
  void assignToSameClass(Value &target) const override;
  /// No bits, a 0 by 0 by 0 block.
  void clear() override;

  unsigned int getNumX() const noexcept { return m_numX; }
  unsigned int getNumY() const noexcept { return m_numY; }
  unsigned int getNumZ() const noexcept { return m_numZ; }
  /// An a by b by c block; the bits keep their linear positions. A block of
  /// more than 2^32 - 1 cells throws MemoryException (annotated).
  void resize(unsigned int numX, unsigned int numY, unsigned int numZ);

  reference getAt(int x, int y, int z) { return reference(*this, cell(x, y, z)); }
  bool getAt(int x, int y, int z) const { return (*this)[cell(x, y, z)]; }
  void setOn(int x, int y, int z) { BitsetValue::setOn(cell(x, y, z)); }
  void setOff(int x, int y, int z) { BitsetValue::setOff(cell(x, y, z)); }
  using BitsetValue::setOff;
  using BitsetValue::setOn;

 private:
  /// The bit of cell (x, y, z), in wrapping 32-bit arithmetic as the storage indexes.
  unsigned int cell(int x, int y, int z) const noexcept {
    return static_cast<unsigned int>(x) * m_plane + static_cast<unsigned int>(y) * m_numZ +
           static_cast<unsigned int>(z);
  }

  unsigned int m_numX = 0;
  unsigned int m_numY = 0;
  unsigned int m_numZ = 0;
  unsigned int m_plane = 0;  // numY * numZ
};

}  // namespace quarn
