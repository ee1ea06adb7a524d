// ValueArrayValue.cpp - owned elements of any class, their order, hash and named payload
#include <quarn/core/Annotate.h>
#include <quarn/core/Class.h>
#include <quarn/value/ByteCodec.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "ArrayCoding.h"
#include "ElementArrays.h"
#include "ElementByName.h"
#include "NarrowText.h"

namespace quarn {

namespace {

constexpr char kClassName[] = "ValueArrayValue";

Value const &element(Value *const &e) noexcept { return *e; }

/// Elements owned while they are being gathered: handed back unless released.
struct Gathered {
  Array<Value *> values;

  Gathered() = default;
  Gathered(Gathered const &) = delete;
  Gathered &operator=(Gathered const &) = delete;
  ~Gathered() { handBack(values); }

  static void handBack(Array<Value *> &values) noexcept {
    for (Value *v : values) v->deleteInstance();
    values.resize(0);
  }
  /// Appends `value`, which is handed back if there is no room for it.
  void adopt(Value *value) {
    ObjPtr<Value> owner(value);
    values.append(value);
    owner.detach();
  }
};

/// Copies of `source`'s values.
Array<Value *> copiesOf(Array<Value *> const &source) {
  Gathered copies;
  copies.values.reserve(source.getSize());
  for (Value *v : source) copies.adopt(v->cloneValue());
  return std::move(copies.values);
}

[[noreturn, gnu::cold]] void failNull() { throw Exception("ValueArrayValue cannot hold a null element"); }

/// How many value arrays this thread is reading inside one another.
thread_local int t_nesting = 0;

/// One level of nesting for as long as it lives; refuses to go past the limit.
class NestingLevel {
 public:
  NestingLevel() {
    if (t_nesting >= ValueArrayValue::kMaxNesting) [[unlikely]]
      throw Exception("ValueArrayValue nesting deeper than %d levels", ValueArrayValue::kMaxNesting);
    ++t_nesting;
  }
  ~NestingLevel() { --t_nesting; }
  NestingLevel(NestingLevel const &) = delete;
  NestingLevel &operator=(NestingLevel const &) = delete;
};

/// Writes element `e`'s class name framing: L = characters + 1 (0 for no
/// name), then the characters. The name and its length come with the tag.
void writeClassName(iByteOutputStream &out, MemoryOutputStream *memory, Value const &e) {
  ClassTag const &tag = e.getClassTag();
  char const *name = tag.getName();
  unsigned int const length = tag.getNameLength();
  if (!memory || !name || length > ValueArrayValue::kMaxClassNameLength) {
    detail::writeNarrowText(out, name, length);
    return;
  }
  unsigned char *p = memory->reserveTail(detail::IntCodec::kMax + length);
  p += detail::IntCodec::encode(static_cast<int>(length + 1), p);
  if (length >= 16 && length <= 32) {  // most class names: two 16-byte copies, overlapping
    std::memcpy(p, name, 16);
    std::memcpy(p + length - 16, name + length - 16, 16);
  } else {
    std::memcpy(p, name, length);
  }
  memory->commitTailTo(p + length);
}

/// The elements a deserialize appends after the `kept` ones the array held:
/// handed back (and the array cut back to the kept ones) unless committed.
class ReadTail {
 public:
  explicit ReadTail(Array<Value *> &array) noexcept : m_array(array), m_kept(array.getSize()) {}
  ReadTail(ReadTail const &) = delete;
  ReadTail &operator=(ReadTail const &) = delete;
  ~ReadTail() {
    if (m_committed) return;
    Value **p = m_array.getBuffer();
    for (unsigned int k = m_kept; k < m_array.getSize(); ++k) p[k]->deleteInstance();
    m_array.resize(m_kept);
  }
  /// Appends `value`, which is handed back if there is no room for it.
  void append(Value *value) {
    ObjPtr<Value> owner(value);
    m_array.append(value);
    owner.detach();
  }
  /// Hands back the kept elements; the appended ones take their places.
  void commit() noexcept {
    Value **p = m_array.getBuffer();
    unsigned int const read = m_array.getSize() - m_kept;
    for (unsigned int k = 0; k < m_kept; ++k) p[k]->deleteInstance();
    if (m_kept) std::memmove(p, p + m_kept, read * sizeof(Value *));
    m_array.resize(read);
    m_committed = true;
  }

 private:
  Array<Value *> &m_array;
  unsigned int const m_kept;
  bool m_committed = false;
};

}  // namespace

QUARN_DEFINE_VALUE_CLASS(ValueArrayValue);

ValueArrayValue::ValueArrayValue(ValueArrayValue const &other) : Glue(other), m_array(copiesOf(other.m_array)) {}

ValueArrayValue::ValueArrayValue(Array<Value *> const &values) {
  for (Value *v : values)
    if (!v) failNull();
  m_array = copiesOf(values);
}

ValueArrayValue::~ValueArrayValue() { Gathered::handBack(m_array); }

ValueArrayValue &ValueArrayValue::operator=(ValueArrayValue const &other) {
  if (this != &other) *this = other.m_array;
  return *this;
}

ValueArrayValue &ValueArrayValue::operator=(Array<Value *> const &values) {
  if (&values == &m_array) return *this;
  for (Value *v : values)
    if (!v) failNull();
  Gathered old;
  old.values = copiesOf(values);
  m_array.swap(old.values);
  return *this;
}

void ValueArrayValue::appendValue(Value *value) {
  if (!value) failNull();
  ObjPtr<Value> owner(value);  // handed back if there is no room for it
  m_array.append(value);
  owner.detach();
}

// ---- Value's slots

unsigned int ValueArrayValue::hash() const { return detail::hashElements(m_array, element); }

void ValueArrayValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << static_cast<int>(m_array.getSize());
  MemoryOutputStream *memory = detail::asMemoryStream(out);
  for (Value const *e : m_array) {
    writeClassName(out, memory, *e);
    e->serialize(out);
  }
}

void ValueArrayValue::deserialize(iByteInputStream &in) {
  detail::annotated(kClassName, "deserialize", [&] {
    NestingLevel level;
    Value::deserialize(in);
    int count;
    in >> count;
    if (count < 0) [[unlikely]]
      detail::failElementCount(count);
    auto const n = static_cast<unsigned int>(count);
    // The elements read go after those the array holds, in the buffer it
    // keeps; the old ones are handed back only once every new one is in.
    ReadTail read(m_array);
    m_array.reserve(m_array.getSize() + std::min(n, 64u));  // little ahead: arrays nest, and each count is unproven
    detail::ElementReader names(in, "ValueArrayValue element");
    for (unsigned int k = 0; k < n; ++k) {
      Value *value = names.readValue(k);
      read.append(value);
      value->deserialize(in);
    }
    read.commit();
  });
}

unsigned int ValueArrayValue::getSize() const { return m_array.getSize(); }

void ValueArrayValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::collectElements(*this, out); }
void ValueArrayValue::getArray(Array<double> &out) const { detail::collectElements(*this, out); }
void ValueArrayValue::getArray(Array<int> &out) const { detail::collectElements(*this, out); }
void ValueArrayValue::getArray(Array<bool> &out) const { detail::collectElements(*this, out); }

ClassTag const &ValueArrayValue::getItemValueType() const { return Value::Tag; }

void ValueArrayValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

int ValueArrayValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  return detail::compareElements(m_array, static_cast<ValueArrayValue const &>(other).m_array, element);
}

void ValueArrayValue::clear() {
  Gathered::handBack(m_array);
  m_array.clear();
}

// ---- ArrayValue's slots

void ValueArrayValue::remove(unsigned int i) {
  Value *gone = m_array[i];
  m_array.remove(i);
  gone->deleteInstance();
}

void ValueArrayValue::resize(unsigned int n) {
  unsigned int const size = m_array.getSize();
  if (n <= size) {
    for (unsigned int k = n; k < size; ++k) m_array.getBuffer()[k]->deleteInstance();
    m_array.resize(n);
    return;
  }
  Gathered added;
  added.values.reserve(n - size);
  for (unsigned int k = size; k < n; ++k) added.adopt(NullValue::newInstance());
  m_array.reserve(n);
  for (Value *v : added.values) m_array.append(v);  // room reserved: cannot fail
  added.values.resize(0);
}

void ValueArrayValue::appendValue(Value const &value) {
  detail::annotated(kClassName, "appendValue", [&] { appendValue(value.cloneValue()); });
}

void ValueArrayValue::insertValue(unsigned int i, Value const &value) {
  detail::annotated(kClassName, "insertValue", [&] {
    if (i > m_array.getSize()) [[unlikely]]
      detail::throwInvalidIndex(i, m_array.getSize() - 1);
    ObjPtr<Value> copy(value.cloneValue());
    m_array.insert(i, copy.get());
    copy.detach();
  });
}

double ValueArrayValue::getIthDouble(unsigned int i) const { return m_array[i]->getDouble(); }
int ValueArrayValue::getIthInteger(unsigned int i) const { return m_array[i]->getInteger(); }
bool ValueArrayValue::getIthBoolean(unsigned int i) const { return m_array[i]->getBoolean(); }

void ValueArrayValue::getIthString(unsigned int i, BaseString<unsigned short> &out) const {
  detail::annotated(kClassName, "getIthString", [&] { m_array[i]->getString(out); });
}

void ValueArrayValue::getIthValue(unsigned int i, ObjPtr<Value> &out) const {
  detail::annotated(kClassName, "getIthValue", [&] { out.reset(m_array[i]->cloneValue()); });
}

void ValueArrayValue::getIthValue(unsigned int i, Value &target) const {
  detail::annotated(kClassName, "getIthValue", [&] { m_array[i]->assignTo(target); });
}

void ValueArrayValue::setIthValue(unsigned int i, Value const &value) {
  detail::annotated(kClassName, "setIthValue", [&] {
    Value *&slot = m_array[i];
    Value *copy = value.cloneValue();
    std::swap(slot, copy);
    copy->deleteInstance();
  });
}

void ValueArrayValue::onDeactivate() {
  if (getSize() > kMaxPooledElements)
    clear();
  else
    resize(0);
}

}  // namespace quarn
