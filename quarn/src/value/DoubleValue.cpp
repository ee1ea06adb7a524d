// DoubleValue.cpp - coercions, order, hash and payload of the double value
#include <quarn/value/ByteStream.h>
#include <quarn/value/DoubleValue.h>
#include <quarnCore/TextUtil.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include "SingleElement.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(DoubleValue);

DoubleValue::~DoubleValue() = default;

unsigned int DoubleValue::hash() const {
  std::uint64_t bits;
  std::memcpy(&bits, &m_value, sizeof bits);
  unsigned int h = 0;
  for (int i = 0; i < 8; ++i) h = h * 31u + static_cast<unsigned int>((bits >> (8 * i)) & 0xFFu);
  return h;
}

void DoubleValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << m_value;
}

void DoubleValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  double value;
  in >> value;
  m_value = value;
}

int DoubleValue::getInteger() const {
  // Written so that NaN fails the test too.
  if (!(m_value > -2147483649.0 && m_value < 2147483648.0)) return INT_MIN;
  return static_cast<int>(m_value);
}

bool DoubleValue::getBoolean() const { return m_value != 0.0; }
double DoubleValue::getDouble() const { return m_value; }

void DoubleValue::getString(BaseString<unsigned short> &out) const {
  unsigned short buffer[32];
  unsigned int length = util::doubleToString(m_value, buffer, 32);
  out.assign(buffer, length);
}

void DoubleValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::singleElement(*this, out); }
void DoubleValue::getArray(Array<double> &out) const { detail::singleElement(*this, out); }
void DoubleValue::getArray(Array<int> &out) const { detail::singleElement(*this, out); }
void DoubleValue::getArray(Array<bool> &out) const { detail::singleElement(*this, out); }

ClassTag DoubleValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.DoubleArrayValue");
  return arrayTag;
}

void DoubleValue::assignToSameClass(Value &target) const { sameClass(target).m_value = m_value; }

int DoubleValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return 1;
  double theirs = static_cast<DoubleValue const &>(other).m_value;
  if (m_value == theirs) return 0;
  return m_value < theirs ? -1 : 1;
}

void DoubleValue::clear() { m_value = 0.0; }
void DoubleValue::onDeactivate() {}

}  // namespace quarn
