// DoubleFingerprintValue.h - a list of real-valued features, told apart from a plain double list
//
// A double fingerprint stores, converts, searches, hashes and serialises
// exactly as a DoubleArrayValue (elements kept in the order given), but under
// its own class: compare orders it against any other class by class name, so
// a fingerprint and a plain array with equal elements do not compare equal
// (while they hash alike). Converters copy the elements between it and
// DoubleArrayValue.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API DoubleFingerprintValue : public ValueGlue<DoubleFingerprintValue, DoubleArrayValue> {
  QUARN_VALUE_CLASS(DoubleFingerprintValue, "Marlix.value.DoubleFingerprintValue",
                    PooledClassImp<DoubleFingerprintValue, -1>)

 public:
  DoubleFingerprintValue() = default;
  DoubleFingerprintValue(DoubleFingerprintValue const &other) : Glue(other) {}
  explicit DoubleFingerprintValue(Array<double> const &elements) : Glue(std::in_place, elements) {}
  DoubleFingerprintValue(double const *elements, unsigned int count) : Glue(std::in_place, elements, count) {}
  ~DoubleFingerprintValue() override;

  DoubleFingerprintValue &operator=(DoubleFingerprintValue const &other) {
    setElements(other.getElements());
    return *this;
  }
  DoubleFingerprintValue &operator=(Array<double> const &elements) {
    setElements(elements);
    return *this;
  }
  /// Copies the elements; the value stays a fingerprint.
  DoubleFingerprintValue &operator=(DoubleArrayValue const &other) {
    setElements(other.getElements());
    return *this;
  }
};

}  // namespace quarn
