// IntegerArrayValue.cpp - the statics and vtable of the integer array
#include <quarn/value/IntegerArrayValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(IntegerArrayValue);

IntegerArrayValue::~IntegerArrayValue() = default;

}  // namespace quarn
