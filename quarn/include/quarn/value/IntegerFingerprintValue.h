// IntegerFingerprintValue.h - a list of integer features, told apart from a plain integer list
//
// An integer fingerprint stores, converts, searches, hashes and serialises
// exactly as an IntegerArrayValue (elements kept in the order given,
// duplicates allowed), but under its own class: compare orders it against any
// other class by class name, so a fingerprint and a plain array with equal
// elements do not compare equal (while they hash alike). Converters copy the
// elements between it and IntegerArrayValue.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API IntegerFingerprintValue : public ValueGlue<IntegerFingerprintValue, IntegerArrayValue> {
  QUARN_VALUE_CLASS(IntegerFingerprintValue, "Marlix.value.IntegerFingerprintValue",
                    PooledClassImp<IntegerFingerprintValue, -1>)

 public:
  IntegerFingerprintValue() = default;
  IntegerFingerprintValue(IntegerFingerprintValue const &other) : Glue(other) {}
  explicit IntegerFingerprintValue(Array<int> const &elements) : Glue(std::in_place, elements) {}
  IntegerFingerprintValue(int const *elements, unsigned int count) : Glue(std::in_place, elements, count) {}
  /// Each long stored as a 32-bit integer (its low 32 bits).
  IntegerFingerprintValue(long const *elements, unsigned int count);
  ~IntegerFingerprintValue() override;

  IntegerFingerprintValue &operator=(IntegerFingerprintValue const &other) {
    setElements(other.getElements());
    return *this;
  }
  IntegerFingerprintValue &operator=(Array<int> const &elements) {
    setElements(elements);
    return *this;
  }
  /// Copies the elements; the value stays a fingerprint.
  IntegerFingerprintValue &operator=(IntegerArrayValue const &other) {
    setElements(other.getElements());
    return *this;
  }
};

}  // namespace quarn
