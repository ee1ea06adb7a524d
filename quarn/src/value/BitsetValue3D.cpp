// BitsetValue3D.cpp - the block's resize, which keeps bits at their linear positions
#include <quarn/core/Annotate.h>
#include <quarn/value/BitsetValue3D.h>
#include <quarnCore/Throw.h>

#include <climits>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BitsetValue3D);

BitsetValue3D::~BitsetValue3D() = default;

BitsetValue3D &BitsetValue3D::operator=(BitsetValue3D const &other) {
  BitsetValue::operator=(other);
  m_numX = other.m_numX;
  m_numY = other.m_numY;
  m_numZ = other.m_numZ;
  m_plane = other.m_plane;
  return *this;
}

void BitsetValue3D::assignToSameClass(Value &target) const { sameClass(target) = *this; }

void BitsetValue3D::clear() {
  BitsetValue::clear();
  m_numX = m_numY = m_numZ = m_plane = 0;
}

void BitsetValue3D::resize(unsigned int numX, unsigned int numY, unsigned int numZ) {
  detail::annotated(shortName, "resize", [&] {
    unsigned long long const plane = static_cast<unsigned long long>(numY) * numZ;
    unsigned long long const cells = plane * numX;
    if (plane > UINT_MAX || cells > UINT_MAX) [[unlikely]]
      detail::throwMemory();
    BitsetValue::resize(static_cast<unsigned int>(cells));
    m_numX = numX;
    m_numY = numY;
    m_numZ = numZ;
    m_plane = static_cast<unsigned int>(plane);
  });
}

}  // namespace quarn
