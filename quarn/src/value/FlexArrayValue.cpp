// FlexArrayValue.cpp - element access, order, hash and payload of the list of flexible values
#include <quarn/core/Annotate.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/FlexArrayValue.h>

#include <utility>

#include "ArrayCoding.h"
#include "ElementArrays.h"

namespace quarn {

namespace {
constexpr char kClassName[] = "FlexArrayValue";
FlexValue const &itself(FlexValue const &e) noexcept { return e; }
}  // namespace

QUARN_DEFINE_VALUE_CLASS(FlexArrayValue);

FlexArrayValue::~FlexArrayValue() = default;

FlexArrayValue &FlexArrayValue::operator=(FlexArrayValue const &other) {
  if (this != &other) m_array = other.m_array;
  return *this;
}

FlexArrayValue &FlexArrayValue::operator=(Array<FlexValue> const &elements) {
  if (&elements != &m_array) m_array = elements;
  return *this;
}

FlexValue &FlexArrayValue::convertIn(Value const &value) {
  value.assignTo(m_scratch);
  return m_scratch;
}

// ---- Value's slots

unsigned int FlexArrayValue::hash() const { return detail::hashElements(m_array, itself); }

void FlexArrayValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << static_cast<int>(m_array.getSize());
  for (FlexValue const &e : m_array) e.serialize(out);
}

void FlexArrayValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int count;
  in >> count;
  if (count < 0) [[unlikely]]
    detail::failElementCount(count);
  detail::readElementsOneByOne(in, m_array, static_cast<unsigned int>(count),
                               [](iByteInputStream &s, FlexValue &e) { e.deserialize(s); });
}

unsigned int FlexArrayValue::getSize() const { return m_array.getSize(); }

void FlexArrayValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::collectElements(*this, out); }
void FlexArrayValue::getArray(Array<double> &out) const { detail::collectElements(*this, out); }
void FlexArrayValue::getArray(Array<int> &out) const { detail::collectElements(*this, out); }
void FlexArrayValue::getArray(Array<bool> &out) const { detail::collectElements(*this, out); }

ClassTag const &FlexArrayValue::getItemValueType() const { return FlexValue::Tag; }

void FlexArrayValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

int FlexArrayValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  return detail::compareElements(m_array, static_cast<FlexArrayValue const &>(other).m_array, itself);
}

void FlexArrayValue::clear() {
  m_array.clear();
  m_scratch.clear();
}

// ---- ArrayValue's slots

void FlexArrayValue::remove(unsigned int i) { m_array.remove(i); }

void FlexArrayValue::resize(unsigned int n) { m_array.resize(n); }

void FlexArrayValue::appendValue(Value const &value) {
  detail::annotated(kClassName, "appendValue", [&] { m_array.append(std::move(convertIn(value))); });
}

void FlexArrayValue::insertValue(unsigned int i, Value const &value) {
  detail::annotated(kClassName, "insertValue", [&] {
    if (i > m_array.getSize()) [[unlikely]]
      detail::throwInvalidIndex(i, m_array.getSize() - 1);
    m_array.insert(i, convertIn(value));
    m_scratch.clear();
  });
}

double FlexArrayValue::getIthDouble(unsigned int i) const { return m_array[i].getDouble(); }
int FlexArrayValue::getIthInteger(unsigned int i) const { return m_array[i].getInteger(); }
bool FlexArrayValue::getIthBoolean(unsigned int i) const { return m_array[i].getBoolean(); }

void FlexArrayValue::getIthString(unsigned int i, BaseString<unsigned short> &out) const {
  detail::annotated(kClassName, "getIthString", [&] { m_array[i].getString(out); });
}

void FlexArrayValue::getIthValue(unsigned int i, ObjPtr<Value> &out) const {
  detail::annotated(kClassName, "getIthValue", [&] { out.reset(FlexValue::allocateCopy(m_array[i])); });
}

void FlexArrayValue::getIthValue(unsigned int i, Value &target) const {
  detail::annotated(kClassName, "getIthValue", [&] { m_array[i].assignTo(target); });
}

void FlexArrayValue::setIthValue(unsigned int i, Value const &value) {
  detail::annotated(kClassName, "setIthValue", [&] {
    FlexValue &slot = m_array[i];
    slot = std::move(convertIn(value));
  });
}

void FlexArrayValue::onDeactivate() {
  m_scratch.clear();
  if (getSize() > kMaxPooledElements)
    clear();
  else
    m_array.resize(0);
}

}  // namespace quarn
