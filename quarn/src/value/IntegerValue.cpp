// IntegerValue.cpp - coercions, order, hash and payload of the integer value
#include <quarn/value/ByteStream.h>
#include <quarn/value/IntegerValue.h>

#include <charconv>

#include "SingleElement.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(IntegerValue);

IntegerValue::~IntegerValue() = default;

unsigned int IntegerValue::hash() const { return static_cast<unsigned int>(m_value); }

void IntegerValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << m_value;
}

void IntegerValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int value;
  in >> value;
  m_value = value;
}

int IntegerValue::getInteger() const { return m_value; }
bool IntegerValue::getBoolean() const { return m_value != 0; }
double IntegerValue::getDouble() const { return m_value; }

void IntegerValue::getString(BaseString<unsigned short> &out) const {
  char digits[16];
  char *end = std::to_chars(digits, digits + sizeof digits, m_value).ptr;
  out.resize(0);
  for (char const *p = digits; p != end; ++p) out.append(static_cast<unsigned short>(*p));
}

void IntegerValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::singleElement(*this, out); }
void IntegerValue::getArray(Array<double> &out) const { detail::singleElement(*this, out); }
void IntegerValue::getArray(Array<int> &out) const { detail::singleElement(*this, out); }
void IntegerValue::getArray(Array<bool> &out) const { detail::singleElement(*this, out); }

ClassTag IntegerValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.IntegerArrayValue");
  return arrayTag;
}

void IntegerValue::assignToSameClass(Value &target) const { sameClass(target).m_value = m_value; }

int IntegerValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  int theirs = static_cast<IntegerValue const &>(other).m_value;
  return m_value == theirs ? 0 : (m_value > theirs ? 1 : -1);
}

void IntegerValue::clear() { m_value = 0; }
void IntegerValue::onDeactivate() {}

}  // namespace quarn
