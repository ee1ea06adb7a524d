// StringFingerprintValue.cpp - the statics and vtable of the string fingerprint
#include <quarn/value/StringFingerprintValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(StringFingerprintValue);

StringFingerprintValue::~StringFingerprintValue() = default;

}  // namespace quarn
