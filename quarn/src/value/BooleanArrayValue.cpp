// BooleanArrayValue.cpp - the statics and vtable of the boolean array
#include <quarn/value/BooleanArrayValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BooleanArrayValue);

BooleanArrayValue::~BooleanArrayValue() = default;

}  // namespace quarn
