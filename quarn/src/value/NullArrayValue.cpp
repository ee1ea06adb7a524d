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
  if (this != &other) m_array = other.m_array;
  return *this;
}

NullArrayValue &NullArrayValue::operator=(Array<NullValue> const &elements) {
  if (&elements != &m_array) m_array = elements;
  return *this;
}

// ---- Value's slots

// h = h * 31 + element hash, where every element hashes to 0.
unsigned int NullArrayValue::hash() const { return 0; }

void NullArrayValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << static_cast<int>(m_array.getSize());
  for (NullValue const &e : m_array) e.serialize(out);
}

void NullArrayValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int count;
  in >> count;
  if (count < 0) [[unlikely]]
    detail::failElementCount(count);
  if (static_cast<unsigned int>(count) > kMaxStreamCount) [[unlikely]]
    throw Exception("NullArrayValue element count %d exceeds %u", count, kMaxStreamCount);
  Array<NullValue> read;
  read.resize(static_cast<unsigned int>(count));
  for (NullValue &e : read) e.deserialize(in);
  m_array.swap(read);
}

unsigned int NullArrayValue::getSize() const { return m_array.getSize(); }

void NullArrayValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::collectElements(*this, out); }
void NullArrayValue::getArray(Array<double> &out) const { detail::collectElements(*this, out); }
void NullArrayValue::getArray(Array<int> &out) const { detail::collectElements(*this, out); }
void NullArrayValue::getArray(Array<bool> &out) const { detail::collectElements(*this, out); }

ClassTag const &NullArrayValue::getItemValueType() const { return NullValue::Tag; }

void NullArrayValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

int NullArrayValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  unsigned int mine = m_array.getSize();
  unsigned int theirs = static_cast<NullArrayValue const &>(other).m_array.getSize();
  return mine < theirs ? -1 : (mine > theirs ? 1 : 0);
}

void NullArrayValue::clear() { m_array.clear(); }

// ---- ArrayValue's slots

void NullArrayValue::remove(unsigned int i) { m_array.remove(i); }

void NullArrayValue::resize(unsigned int n) { m_array.resize(n); }

void NullArrayValue::appendValue(Value const &value) {
  detail::annotated(kClassName, "appendValue", [&] {
    unsigned int n = value.as<ArrayValue>() ? value.getSize() : 1;
    if (n > 0xFFFFFFFFu - m_array.getSize()) [[unlikely]]
      detail::throwMemory();
    m_array.resize(m_array.getSize() + n);
  });
}

void NullArrayValue::insertValue(unsigned int i, Value const &) {
  detail::annotated(kClassName, "insertValue", [&] { m_array.insert(i, NullValue()); });
}

double NullArrayValue::getIthDouble(unsigned int i) const { return m_array[i].getDouble(); }
int NullArrayValue::getIthInteger(unsigned int i) const { return m_array[i].getInteger(); }
bool NullArrayValue::getIthBoolean(unsigned int i) const { return m_array[i].getBoolean(); }

void NullArrayValue::getIthString(unsigned int i, BaseString<unsigned short> &out) const {
  detail::annotated(kClassName, "getIthString", [&] { m_array[i].getString(out); });
}

void NullArrayValue::getIthValue(unsigned int i, ObjPtr<Value> &out) const {
  detail::annotated(kClassName, "getIthValue", [&] {
    (void)m_array[i];
    out.reset(NullValue::newInstance());
  });
}

void NullArrayValue::getIthValue(unsigned int i, Value &target) const {
  detail::annotated(kClassName, "getIthValue", [&] { m_array[i].assignTo(target); });
}

void NullArrayValue::setIthValue(unsigned int i, Value const &) {
  detail::annotated(kClassName, "setIthValue", [&] { (void)m_array[i]; });
}

}  // namespace quarn
