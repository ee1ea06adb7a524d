// BooleanValue.cpp - coercions, order, hash and payload of the boolean value
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteStream.h>

#include "SingleElement.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BooleanValue);

BooleanValue::~BooleanValue() = default;

unsigned int BooleanValue::hash() const { return m_value ? 1u : 0u; }

void BooleanValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << m_value;
}

void BooleanValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  bool value;
  in >> value;
  m_value = value;
}

int BooleanValue::getInteger() const { return m_value ? 1 : 0; }
bool BooleanValue::getBoolean() const { return m_value; }
double BooleanValue::getDouble() const { return m_value ? 1.0 : 0.0; }

void BooleanValue::getString(BaseString<unsigned short> &out) const {
  out.resize(0);
  out.appendAscii(m_value ? "true" : "false");
}

void BooleanValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::singleElement(*this, out); }
void BooleanValue::getArray(Array<double> &out) const { detail::singleElement(*this, out); }
void BooleanValue::getArray(Array<int> &out) const { detail::singleElement(*this, out); }
void BooleanValue::getArray(Array<bool> &out) const { detail::singleElement(*this, out); }

ClassTag BooleanValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.BooleanArrayValue");
  return arrayTag;
}

void BooleanValue::assignToSameClass(Value &target) const { sameClass(target).m_value = m_value; }

int BooleanValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  bool theirs = static_cast<BooleanValue const &>(other).m_value;
  if (m_value == theirs) return 0;
  return m_value ? 1 : -1;
}

void BooleanValue::clear() { m_value = false; }
void BooleanValue::onDeactivate() {}

}  // namespace quarn
