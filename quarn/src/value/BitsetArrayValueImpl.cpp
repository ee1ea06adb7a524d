// BitsetArrayValueImpl.cpp - the element operations of the bitset arrays, and their two classes' statics
//
// Elements are converted into a temporary first and only then stored, so a
// conversion that fails leaves the array as it was, and a value that is
// itself an element of this array can be appended or stored safely.
#include <quarn/core/Annotate.h>
#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitsetArrayValue.h>
#include <quarn/value/BitsetArrayValueImpl.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/ValueGlue.h>

#include <algorithm>
#include <utility>

#include "ArrayCoding.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BitsetArrayValue);
QUARN_DEFINE_VALUE_CLASS(BitFingerprintArrayValue);

BitsetArrayValue::~BitsetArrayValue() = default;
BitFingerprintArrayValue::~BitFingerprintArrayValue() = default;

namespace {

/// The array class named in annotations.
template <class Element>
constexpr char const *kArrayName = nullptr;
template <>
constexpr char const *kArrayName<BitsetValue> = BitsetArrayValue::shortName;
template <>
constexpr char const *kArrayName<BitFingerprintValue> = BitFingerprintArrayValue::shortName;

/// Runs `body` inside the catch-and-annotate wrapper of the array class.
template <class Element, class F>
decltype(auto) annotated(char const *operation, F &&body) {
  return detail::annotated(kArrayName<Element>, operation, std::forward<F>(body));
}

/// `value` converted into a new element.
template <class Element>
Element converted(Value const &value) {
  Element element;
  value.assignTo(element);
  return element;
}

/// Replaces `out` with one entry per element, made by `entry`.
template <class Element, class T, class F>
void eachElement(Array<Element> const &elements, Array<T> &out, F entry) {
  Array<T> result;
  result.reserve(elements.getSize());
  for (Element const &e : elements) result.append(entry(e));
  out.swap(result);
}

}  // namespace

template <class E>
BitsetArrayValueImpl<E>::~BitsetArrayValueImpl() = default;

template <class E>
unsigned int BitsetArrayValueImpl<E>::hash() const {
  unsigned int h = 0;
  for (E const &e : m_array) h = h * 31u + e.hash();
  return h;
}

template <class E>
void BitsetArrayValueImpl<E>::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << static_cast<int>(m_array.getSize());
  for (E const &e : m_array) e.serialize(out);
}

template <class E>
void BitsetArrayValueImpl<E>::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int count;
  in >> count;
  if (count < 0) [[unlikely]]
    detail::failElementCount(count);
  // Each element takes at least two bytes, so storage follows what arrives.
  Array<E> elements;
  elements.reserve(std::min(static_cast<unsigned int>(count), 64u));
  for (int k = 0; k < count; ++k) {
    E element;
    element.deserialize(in);
    elements.append(std::move(element));
  }
  m_array.swap(elements);
}

template <class E>
unsigned int BitsetArrayValueImpl<E>::getSize() const {
  return m_array.getSize();
}

template <class E>
void BitsetArrayValueImpl<E>::getArray(Array<BaseString<unsigned short>> &out) const {
  eachElement(m_array, out, [](E const &e) {
    BaseString<unsigned short> text;
    e.getString(text);
    return text;
  });
}
template <class E>
void BitsetArrayValueImpl<E>::getArray(Array<double> &out) const {
  eachElement(m_array, out, [](E const &e) { return e.getDouble(); });
}
template <class E>
void BitsetArrayValueImpl<E>::getArray(Array<int> &out) const {
  eachElement(m_array, out, [](E const &e) { return e.getInteger(); });
}
template <class E>
void BitsetArrayValueImpl<E>::getArray(Array<bool> &out) const {
  eachElement(m_array, out, [](E const &e) { return e.getBoolean(); });
}

template <class E>
ClassTag const &BitsetArrayValueImpl<E>::getItemValueType() const {
  return E::Tag;
}

template <class E>
void BitsetArrayValueImpl<E>::assignToSameClass(Value &target) const {
  if (target.getClassTag().getId() != getClassTag().getId()) [[unlikely]]
    detail::throwCannotConvert(getClassTag().getName(), target.getClassTag().getName());
  static_cast<BitsetArrayValueImpl &>(target).setElements(m_array);
}

template <class E>
int BitsetArrayValueImpl<E>::compare(Value const &other) const {
  if (other.getClassTag().getId() != getClassTag().getId()) return compareClassName(other);
  Array<E> const &theirs = static_cast<BitsetArrayValueImpl const &>(other).m_array;
  if (theirs.getSize() != m_array.getSize()) return theirs.getSize() < m_array.getSize() ? -1 : 1;
  for (unsigned int i = 0; i < m_array.getSize(); ++i)
    if (int order = m_array.getBuffer()[i].compare(theirs.getBuffer()[i])) return order;
  return 0;
}

template <class E>
void BitsetArrayValueImpl<E>::clear() {
  annotated<E>("clear", [&] { m_array.clear(); });
}

template <class E>
void BitsetArrayValueImpl<E>::remove(unsigned int i) {
  annotated<E>("remove", [&] { m_array.remove(i); });
}

template <class E>
void BitsetArrayValueImpl<E>::resize(unsigned int n) {
  annotated<E>("resize", [&] { m_array.resize(n); });
}

template <class E>
void BitsetArrayValueImpl<E>::appendValue(Value const &value) {
  annotated<E>("appendValue", [&] {
    unsigned int const n = value.getSize();
    ArrayValue const *array = n > 1 ? value.as<ArrayValue>() : nullptr;
    if (n == 1 || (n > 1 && !array)) {
      m_array.append(converted<E>(value));
    } else if (array) {
      // One element at a time, so a failed conversion keeps the ones before it.
      for (unsigned int k = 0; k < n; ++k) {
        E element;
        array->getIthValue(k, element);
        m_array.append(std::move(element));
      }
    }
  });
}

template <class E>
void BitsetArrayValueImpl<E>::insertValue(unsigned int i, Value const &value) {
  annotated<E>("insertValue", [&] { m_array.insert(i, converted<E>(value)); });
}

template <class E>
double BitsetArrayValueImpl<E>::getIthDouble(unsigned int i) const {
  return annotated<E>("getIthDouble", [&] { return m_array[i].getDouble(); });
}

template <class E>
int BitsetArrayValueImpl<E>::getIthInteger(unsigned int i) const {
  return annotated<E>("getIthInteger", [&] { return m_array[i].getInteger(); });
}

template <class E>
bool BitsetArrayValueImpl<E>::getIthBoolean(unsigned int i) const {
  return annotated<E>("getIthBoolean", [&] { return m_array[i].getBoolean(); });
}

template <class E>
void BitsetArrayValueImpl<E>::getIthString(unsigned int i, BaseString<unsigned short> &out) const {
  annotated<E>("getIthString", [&] {
    E const &element = m_array[i];
    out.resize(0);
    element.getString(out);
  });
}

template <class E>
void BitsetArrayValueImpl<E>::getIthValue(unsigned int i, ObjPtr<Value> &out) const {
  annotated<E>("getIthValue", [&] { out.reset(m_array[i].cloneValue()); });
}

template <class E>
void BitsetArrayValueImpl<E>::getIthValue(unsigned int i, Value &target) const {
  annotated<E>("getIthValue", [&] { m_array[i].assignTo(target); });
}

template <class E>
void BitsetArrayValueImpl<E>::setIthValue(unsigned int i, Value const &value) {
  annotated<E>("setIthValue", [&] {
    E &slot = m_array[i];
    slot = converted<E>(value);
  });
}

template <class E>
void BitsetArrayValueImpl<E>::append(E const &element) {
  annotated<E>("append", [&] { m_array.append(element); });
}

template <class E>
void BitsetArrayValueImpl<E>::setElements(Array<E> const &elements) {
  if (&elements != &m_array) m_array = elements;
}

template <class E>
void BitsetArrayValueImpl<E>::setElements(Array<E> &&elements) noexcept {
  m_array = std::move(elements);
}

template class BitsetArrayValueImpl<BitsetValue>;
template class BitsetArrayValueImpl<BitFingerprintValue>;

}  // namespace quarn
