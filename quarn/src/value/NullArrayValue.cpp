// NullArrayValue.cpp - a counted list of null values: conversions, order and payload
#include <quarn/core/Annotate.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/NullArrayValue.h>
#include <quarnCore/Exception.h>

#include "ArrayCoding.h"
#include "ElementArrays.h"

namespace quarn {

namespace {
constexpr char kClassName[] = "NullArrayValue";
}  // namespace

QUARN_DEFINE_VALUE_CLASS(NullArrayValue);

NullArrayValue::~NullArrayValue() = default;

NullArrayValue &NullArrayValue::operator=(NullArrayValue const &other) {
  m_count = other.m_count;
  return *this;
}

NullArrayValue &NullArrayValue::operator=(Array<NullValue> const &elements) {
  m_count = elements.getSize();
  return *this;
}

void NullArrayValue::append(NullValue const &) {
  if (m_count == 0xFFFFFFFFu) [[unlikely]]
    detail::throwMemory();
  ++m_count;
}

void NullArrayValue::checkIndex(unsigned int i) const {
  if (i >= m_count) [[unlikely]]
    detail::throwInvalidIndex(i, m_count - 1);
}

// ---- Value's slots

// h = h * 31 + element hash, where every element hashes to 0.
unsigned int NullArrayValue::hash() const { return 0; }

// Each element's NullValue payload is empty: the count is all there is.
void NullArrayValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << static_cast<int>(m_count);
}

void NullArrayValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int count;
  in >> count;
  if (count < 0) [[unlikely]]
    detail::failElementCount(count);
  if (static_cast<unsigned int>(count) > kMaxStreamCount) [[unlikely]]
    throw Exception("NullArrayValue element count %d exceeds %u", count, kMaxStreamCount);
  m_count = static_cast<unsigned int>(count);
}

unsigned int NullArrayValue::getSize() const { return m_count; }

void NullArrayValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::collectElements(*this, out); }
void NullArrayValue::getArray(Array<double> &out) const { detail::collectElements(*this, out); }
void NullArrayValue::getArray(Array<int> &out) const { detail::collectElements(*this, out); }
void NullArrayValue::getArray(Array<bool> &out) const { detail::collectElements(*this, out); }

ClassTag const &NullArrayValue::getItemValueType() const { return NullValue::Tag; }

void NullArrayValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

int NullArrayValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  unsigned int theirs = static_cast<NullArrayValue const &>(other).m_count;
  return m_count < theirs ? -1 : (m_count > theirs ? 1 : 0);
}

void NullArrayValue::clear() { m_count = 0; }

// ---- ArrayValue's slots

void NullArrayValue::remove(unsigned int i) {
  checkIndex(i);
  --m_count;
}

void NullArrayValue::resize(unsigned int n) { m_count = n; }

void NullArrayValue::appendValue(Value const &value) {
  detail::annotated(kClassName, "appendValue", [&] {
    unsigned int n = value.as<ArrayValue>() ? value.getSize() : 1;
    if (n > 0xFFFFFFFFu - m_count) [[unlikely]]
      detail::throwMemory();
    m_count += n;
  });
}

void NullArrayValue::insertValue(unsigned int i, Value const &) {
  detail::annotated(kClassName, "insertValue", [&] {
    if (i > m_count) [[unlikely]]
      detail::throwInvalidIndex(i, m_count - 1);
    append(NullValue());
  });
}

double NullArrayValue::getIthDouble(unsigned int i) const {
  checkIndex(i);
  return NullValue().getDouble();
}
int NullArrayValue::getIthInteger(unsigned int i) const {
  checkIndex(i);
  return NullValue().getInteger();
}
bool NullArrayValue::getIthBoolean(unsigned int i) const {
  checkIndex(i);
  return NullValue().getBoolean();
}

void NullArrayValue::getIthString(unsigned int i, BaseString<unsigned short> &out) const {
  detail::annotated(kClassName, "getIthString", [&] {
    checkIndex(i);
    NullValue().getString(out);
  });
}

void NullArrayValue::getIthValue(unsigned int i, ObjPtr<Value> &out) const {
  detail::annotated(kClassName, "getIthValue", [&] {
    checkIndex(i);
    out.reset(NullValue::newInstance());
  });
}

void NullArrayValue::getIthValue(unsigned int i, Value &target) const {
  detail::annotated(kClassName, "getIthValue", [&] {
    checkIndex(i);
    NullValue().assignTo(target);
  });
}

void NullArrayValue::setIthValue(unsigned int i, Value const &) {
  detail::annotated(kClassName, "setIthValue", [&] { checkIndex(i); });
}

}  // namespace quarn
