// BitsetArrayValue.h - a record property holding a list of whole bitsets
//
// Each element is a whole BitsetValue, held by value; see
// BitsetArrayValueImpl.h for the element operations, the order (more
// elements order first), the hash and the payload. Items are BitsetValues,
// so the XML text of an element is the bitset's own ("10 1 3 5"). A pooled
// array comes back empty and frees its storage above 1000 elements.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/BitsetArrayValueImpl.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

#include <utility>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BitsetArrayValue : public ValueGlue<BitsetArrayValue, BitsetArrayValueImpl<BitsetValue>> {
  QUARN_VALUE_CLASS(BitsetArrayValue, "Marlix.value.BitsetArrayValue", PooledClassImp<BitsetArrayValue, -1>)

 public:
  BitsetArrayValue() = default;
  BitsetArrayValue(BitsetArrayValue const &other) : Glue(other) {}
  explicit BitsetArrayValue(Array<BitsetValue> const &elements) : Glue(std::in_place, elements) {}
  ~BitsetArrayValue() override;

  BitsetArrayValue &operator=(BitsetArrayValue const &other) {
    setElements(other.getElements());
    return *this;
  }
  BitsetArrayValue &operator=(Array<BitsetValue> const &elements) {
    setElements(elements);
    return *this;
  }
};

}  // namespace quarn
