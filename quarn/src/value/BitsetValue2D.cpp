// BitsetValue2D.cpp - the grid's resize, which keeps cells at their coordinates
#include <quarn/core/Annotate.h>
#include <quarn/value/BitsetValue2D.h>
#include <quarnCore/Throw.h>

#include <algorithm>
#include <climits>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BitsetValue2D);

BitsetValue2D::~BitsetValue2D() = default;

BitsetValue2D &BitsetValue2D::operator=(BitsetValue2D const &other) {
  BitsetValue::operator=(other);
  m_numX = other.m_numX;
  m_numY = other.m_numY;
  return *this;
}

void BitsetValue2D::assignToSameClass(Value &target) const { sameClass(target) = *this; }

void BitsetValue2D::clear() {
  BitsetValue::clear();
  m_numX = m_numY = 0;
}

void BitsetValue2D::onActivate() {
  BitsetValue::onActivate();
  m_numX = m_numY = 0;
}

void BitsetValue2D::resize(unsigned int numX, unsigned int numY) {
  detail::annotated(shortName, "resize", [&] {
    unsigned long long const cells = static_cast<unsigned long long>(numX) * numY;
    if (cells > UINT_MAX) [[unlikely]]
      detail::throwMemory();
    BitsetValue const old(*this);
    BitsetValue::resize(static_cast<unsigned int>(cells));
    setAll(false);
    unsigned int const keepX = std::min(m_numX, numX), keepY = std::min(m_numY, numY);
    for (unsigned long long x = 0; x < keepX; ++x) {
      for (unsigned long long y = 0; y < keepY; ++y) {
        unsigned long long const from = x * m_numY + y;
        // Extents left over from a stream read may not match the bits: read only what exists.
        if (from < old.getNumBits() && old[static_cast<unsigned int>(from)])
          setOn(static_cast<unsigned int>(x * numY + y));
      }
    }
    m_numX = numX;
    m_numY = numY;
  });
}

}  // namespace quarn
