// DoubleArrayValue.cpp - the statics and vtable of the double array, and its construction from floats
#include <quarn/value/DoubleArrayValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(DoubleArrayValue);

DoubleArrayValue::DoubleArrayValue(float const *elements, unsigned int count) {
  m_array.reserve(count);
  for (unsigned int i = 0; i < count; ++i) m_array.append(static_cast<double>(elements[i]));
}

DoubleArrayValue::~DoubleArrayValue() = default;

}  // namespace quarn
