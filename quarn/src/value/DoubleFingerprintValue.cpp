// DoubleFingerprintValue.cpp - the statics and vtable of the double fingerprint
#include <quarn/value/DoubleFingerprintValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(DoubleFingerprintValue);

DoubleFingerprintValue::~DoubleFingerprintValue() = default;

}  // namespace quarn
