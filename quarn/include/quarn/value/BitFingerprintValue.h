// BitFingerprintValue.h - a bitset under its own identity, for binary fingerprints
//
// Storage, bit operations, hash, payload and XML text are BitsetValue's. What
// differs is the identity (its own class, its array class
// BitFingerprintArrayValue) and the order: two fingerprints compare 0 when
// they are equal (same number of bits, same words) and 1 otherwise, in both
// directions, with no ordering by length at all, deliberately. Against another
// class they order by class name, the other's name first.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ValueGlue.h>

#include <utility>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BitFingerprintValue : public ValueGlue<BitFingerprintValue, BitsetValue> {
  QUARN_VALUE_CLASS(BitFingerprintValue, "Marlix.value.BitFingerprintValue", PooledClassImp<BitFingerprintValue, -1>)

 public:
  BitFingerprintValue() = default;
  /// `numBits` bits, all off.
  explicit BitFingerprintValue(unsigned int numBits) : Glue(std::in_place, numBits) {}
  BitFingerprintValue(BitFingerprintValue const &other) : Glue(other) {}
  BitFingerprintValue(BitFingerprintValue &&other) noexcept : Glue(std::in_place, static_cast<BitsetValue &&>(other)) {}
  ~BitFingerprintValue() override;
  BitFingerprintValue &operator=(BitFingerprintValue const &other) {
    BitsetValue::operator=(other);
    return *this;
  }
  BitFingerprintValue &operator=(BitFingerprintValue &&other) noexcept {
    BitsetValue::operator=(static_cast<BitsetValue &&>(other));
    return *this;
  }
  /// Assigning a plain bitset or a list of 0-based positions keeps the fingerprint identity.
  using BitsetValue::operator=;

  /// "Marlix.value.BitFingerprintArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  /// 0 when equal, else 1 (never -1); another class by class name.
  int compare(Value const &other) const override;
};

}  // namespace quarn
