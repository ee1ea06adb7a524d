// IntegerFingerprintValue.cpp - the statics and vtable of the integer fingerprint
#include <quarn/value/IntegerFingerprintValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(IntegerFingerprintValue);

IntegerFingerprintValue::IntegerFingerprintValue(long const *elements, unsigned int count) {
  m_array.reserve(count);
  for (unsigned int i = 0; i < count; ++i) m_array.append(static_cast<int>(elements[i]));
}

IntegerFingerprintValue::~IntegerFingerprintValue() = default;

}  // namespace quarn
