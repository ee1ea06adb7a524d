// BitFingerprintArrayValue.h - a record property holding a list of whole bit fingerprints
//
// Each element is a whole BitFingerprintValue, held by value; see
// BitsetArrayValueImpl.h for the element operations, the order (more
// elements order first; elements compare equal or not), the hash and the
// payload. Items are BitFingerprintValues, so the XML text of an element is
// the fingerprint's own ("10 1 3 5"). A pooled array comes back empty and
// frees its storage above 1000 elements.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetArrayValueImpl.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

#include <utility>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BitFingerprintArrayValue
    : public ValueGlue<BitFingerprintArrayValue, BitsetArrayValueImpl<BitFingerprintValue>> {
  QUARN_VALUE_CLASS(BitFingerprintArrayValue, "Marlix.value.BitFingerprintArrayValue",
                    PooledClassImp<BitFingerprintArrayValue, -1>)

 public:
  BitFingerprintArrayValue() = default;
  BitFingerprintArrayValue(BitFingerprintArrayValue const &other) : Glue(other) {}
  explicit BitFingerprintArrayValue(Array<BitFingerprintValue> const &elements) : Glue(std::in_place, elements) {}
  ~BitFingerprintArrayValue() override;

  BitFingerprintArrayValue &operator=(BitFingerprintArrayValue const &other) {
    setElements(other.getElements());
    return *this;
  }
  BitFingerprintArrayValue &operator=(Array<BitFingerprintValue> const &elements) {
    setElements(elements);
    return *this;
  }
};

}  // namespace quarn
