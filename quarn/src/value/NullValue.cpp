// NullValue.cpp - the refusals and empty answers of the null value
#include <quarn/value/NullValue.h>
#include <quarnCore/Exception.h>

#include <limits>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(NullValue);

NullValue::~NullValue() = default;

void NullValue::InvalidRequest() { throw Exception("Invalid request: a NullValue type cannot hold a value"); }

void NullValue::serialize(iByteOutputStream &out) const { Value::serialize(out); }
void NullValue::deserialize(iByteInputStream &in) { Value::deserialize(in); }

unsigned int NullValue::getSize() const { return 0; }
int NullValue::getInteger() const { InvalidRequest(); }
bool NullValue::getBoolean() const { InvalidRequest(); }
double NullValue::getDouble() const { return std::numeric_limits<double>::quiet_NaN(); }
void NullValue::getString(BaseString<unsigned short> &out) const { out.resize(0); }

void NullValue::getArray(Array<BaseString<unsigned short>> &out) const { out.resize(0); }
void NullValue::getArray(Array<double> &out) const { out.resize(0); }
void NullValue::getArray(Array<int> &out) const { out.resize(0); }
void NullValue::getArray(Array<bool> &out) const { out.resize(0); }

ClassTag NullValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.NullArrayValue");
  return arrayTag;
}

void NullValue::assignToSameClass(Value &target) const { sameClass(target); }

bool NullValue::findInteger(int &) const { return false; }
bool NullValue::findBoolean(bool &) const { return false; }

int NullValue::compare(Value const &other) const {
  return other.getClassTag().getId() == Tag.getId() ? 0 : compareClassName(other);
}

bool NullValue::getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const {
  text.resize(0);
  extra.resize(0);
  return false;
}

void NullValue::clear() {}
void NullValue::onDeactivate() {}

}  // namespace quarn
