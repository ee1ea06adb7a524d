// BitFingerprintValue.cpp - the fingerprint's identity and its equal-or-not order
#include <quarn/value/BitFingerprintValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BitFingerprintValue);

BitFingerprintValue::~BitFingerprintValue() = default;

ClassTag BitFingerprintValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.BitFingerprintArrayValue");
  return arrayTag;
}

void BitFingerprintValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

int BitFingerprintValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  return *this == static_cast<BitFingerprintValue const &>(other) ? 0 : 1;
}

}  // namespace quarn
