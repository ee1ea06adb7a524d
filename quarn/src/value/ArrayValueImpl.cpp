// ArrayValueImpl.cpp - the shared behaviour of the typed arrays, instantiated for their five element types
//
// Every operation is written once against ArrayElement<T> (conversions, item
// class, hash, coder) and the Comparator (equality and order). Search and
// comparison of numeric elements scan a block of 64 bytes per step with
// vector compares before they look for the exact index; the answers are
// those of the plain element-by-element loop.
#include <quarn/value/ArrayValueImpl.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include <quarn/core/Annotate.h>
#include <quarnCore/Exception.h>

#include "ArrayCoding.h"
#include "ArrayElement.h"

namespace quarn {

namespace detail {

void failArrayRead(char const *message) { throw Exception("%hs", message); }
void failElementCount(int count) { throw Exception("Invalid array element count %d", count); }

void failNotFound() { throw Exception("ArrayValueImpl::get, array value was not found"); }

namespace {

// The scans of numeric elements look at 64 bytes at a time as four 16-byte
// vectors (the compiler's portable vector types: SSE2 on x86-64), with one
// branch per block, before they look for the exact index. The comparators of
// numbers are the operators == and !=, which the vector compares apply lane
// by lane (ordered equality for doubles, so a NaN equals nothing there too).
// A bool is scanned as its byte, 0 or 1.

template <class T>
using ScanScalar = std::conditional_t<std::is_same_v<T, bool>, unsigned char, T>;

template <class S>
struct Vector16 {
  typedef S Type __attribute__((vector_size(16)));
  static constexpr unsigned int kLanes = 16 / sizeof(S);
  static Type load(S const *p) noexcept {
    Type v;
    std::memcpy(&v, p, sizeof v);
    return v;
  }
};

/// Whether any lane of a comparison mask is set.
template <class Mask>
bool anyLane(Mask mask) noexcept {
  static_assert(sizeof mask == 16);
  std::uint64_t words[2];
  std::memcpy(words, &mask, sizeof words);
  return (words[0] | words[1]) != 0;
}

/// The first index in [begin, count) whose element equals `x`, or count.
template <class Comparator, class T>
unsigned int scanFor(T const *elements, unsigned int begin, unsigned int count, T const &x) {
  unsigned int i = begin;
  if constexpr (std::is_arithmetic_v<T>) {
    using S = ScanScalar<T>;
    using V = Vector16<S>;
    constexpr unsigned int n = V::kLanes;
    auto const *p = reinterpret_cast<S const *>(elements);
    typename V::Type const xs = typename V::Type{} + static_cast<S>(x);
    for (; count - i >= 4 * n; i += 4 * n) {
      S const *b = p + i;
      if (anyLane((V::load(b) == xs) | (V::load(b + n) == xs) | (V::load(b + 2 * n) == xs) |
                  (V::load(b + 3 * n) == xs)))
        break;
    }
  }
  for (; i < count; ++i)
    if (Comparator::equal(elements[i], x)) return i;
  return count;
}

/// The first index where the elements of `a` and `b` are not equal, or count.
template <class Comparator, class T>
unsigned int firstDifference(T const *a, T const *b, unsigned int count) {
  unsigned int i = 0;
  if constexpr (std::is_arithmetic_v<T>) {
    using S = ScanScalar<T>;
    using V = Vector16<S>;
    constexpr unsigned int n = V::kLanes;
    auto const *p = reinterpret_cast<S const *>(a);
    auto const *q = reinterpret_cast<S const *>(b);
    for (; count - i >= 4 * n; i += 4 * n) {
      S const *x = p + i;
      S const *y = q + i;
      if (anyLane((V::load(x) != V::load(y)) | (V::load(x + n) != V::load(y + n)) |
                  (V::load(x + 2 * n) != V::load(y + 2 * n)) | (V::load(x + 3 * n) != V::load(y + 3 * n))))
        break;
    }
  }
  for (; i < count; ++i)
    if (!Comparator::equal(a[i], b[i])) return i;
  return count;
}

/// Element `e` as a value of scalar kind X, by the conversions of ArrayElement.
template <class X, class E, class T>
X convertElement(T const &e) {
  if constexpr (std::is_same_v<X, double>) {
    return E::toDouble(e);
  } else if constexpr (std::is_same_v<X, int>) {
    return E::toInteger(e);
  } else if constexpr (std::is_same_v<X, bool>) {
    return E::toBoolean(e);
  } else {
    X text;
    E::toString(e, text);
    return text;
  }
}

}  // namespace
}  // namespace detail

namespace {

template <class T>
using Element = detail::ArrayElement<T>;

/// Every element of `from` converted to X, replacing `out`.
template <class T, class X>
void convertAll(Array<T> const &from, Array<X> &out) {
  if constexpr (std::is_same_v<T, X>) {
    out = from;
  } else {
    // Built aside, so a conversion that throws (text that is no number) leaves `out` as it was.
    Array<X> result;
    result.reserve(from.getSize());
    for (T const &e : from) result.append(detail::convertElement<X, Element<T>>(e));
    out.swap(result);
  }
}

}  // namespace

template <class T, class C>
ArrayValueImpl<T, C>::ArrayValueImpl(T const *elements, unsigned int count) {
  m_array.reserve(count);
  for (unsigned int i = 0; i < count; ++i) m_array.append(elements[i]);
}

template <class T, class C>
ArrayValueImpl<T, C>::~ArrayValueImpl() = default;

template <class T, class C>
void ArrayValueImpl<T, C>::setElements(T const *elements, unsigned int count) {
  // Elements inside this array leave room for `count` without growing, so
  // growing (which moves the buffer) only happens for elements from elsewhere.
  unsigned int const size = m_array.getSize();
  if constexpr (std::is_trivially_copyable_v<T>) {
    m_array.resize(count);
    if (count) std::memmove(m_array.getBuffer(), elements, sizeof(T) * count);
  } else {
    m_array.reserve(count);
    T *p = m_array.getBuffer();
    unsigned int const common = std::min(size, count);
    for (unsigned int i = 0; i < common; ++i) p[i] = elements[i];  // each string keeps its buffer
    for (unsigned int i = common; i < count; ++i) m_array.append(elements[i]);
    if (count < size) m_array.resize(count);
  }
}

template <class T, class C>
unsigned int ArrayValueImpl<T, C>::hash() const {
  return Element<T>::hash(m_array.getBuffer(), m_array.getSize());
}

template <class T, class C>
void ArrayValueImpl<T, C>::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  unsigned int count = m_array.getSize();
  out << static_cast<int>(count);
  if constexpr (requires { typename Element<T>::Codec; }) {
    detail::writeElements<typename Element<T>::Codec>(out, m_array.getBuffer(), count);
  } else {
    for (T const &e : m_array) out << e;
  }
}

template <class T, class C>
void ArrayValueImpl<T, C>::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int count;
  in >> count;
  if (count < 0) [[unlikely]]
    detail::failElementCount(count);
  auto n = static_cast<unsigned int>(count);
  if constexpr (requires { typename Element<T>::Codec; }) {
    detail::readElements<typename Element<T>::Codec>(in, m_array, n);
  } else {
    detail::readElementsOneByOne(in, m_array, n, [](iByteInputStream &s, T &e) { s >> e; });
  }
}

template <class T, class C>
unsigned int ArrayValueImpl<T, C>::getSize() const {
  return m_array.getSize();
}

template <class T, class C>
void ArrayValueImpl<T, C>::getArray(Array<BaseString<unsigned short>> &out) const {
  convertAll(m_array, out);
}
template <class T, class C>
void ArrayValueImpl<T, C>::getArray(Array<double> &out) const {
  convertAll(m_array, out);
}
template <class T, class C>
void ArrayValueImpl<T, C>::getArray(Array<int> &out) const {
  convertAll(m_array, out);
}
template <class T, class C>
void ArrayValueImpl<T, C>::getArray(Array<bool> &out) const {
  convertAll(m_array, out);
}

template <class T, class C>
ClassTag const &ArrayValueImpl<T, C>::getItemValueType() const {
  return Element<T>::Item::Tag;
}

template <class T, class C>
void ArrayValueImpl<T, C>::assignToSameClass(Value &target) const {
  if (target.getClassTag().getId() != getClassTag().getId()) [[unlikely]]
    detail::throwCannotConvert(getClassTag().getName(), target.getClassTag().getName());
  static_cast<ArrayValueImpl &>(target).m_array = m_array;
}

template <class T, class C>
int ArrayValueImpl<T, C>::compare(Value const &other) const {
  // Same tag, same most-derived class: `other` is an array of this element type.
  if (other.getClassTag().getId() == getClassTag().getId())
    return compareValues(static_cast<ArrayValueImpl const &>(other));
  return compareClassName(other);
}

template <class T, class C>
void ArrayValueImpl<T, C>::clear() {
  m_array.clear();
}

template <class T, class C>
void ArrayValueImpl<T, C>::remove(unsigned int i) {
  m_array.remove(i);
}

template <class T, class C>
void ArrayValueImpl<T, C>::resize(unsigned int n) {
  m_array.resize(n);
}

template <class T, class C>
void ArrayValueImpl<T, C>::appendValue(Value const &value) {
  detail::annotated(Element<T>::kClassName, "appendValue", [&] {
    unsigned int n = value.getSize();
    if (n == 1) {
      m_array.append(Element<T>::fromValue(value));
    } else if (n > 1) {
      if (ArrayValue const *array = value.as<ArrayValue>()) {
        // One element at a time, so a failed conversion keeps the ones before it.
        for (unsigned int k = 0; k < n; ++k) m_array.append(Element<T>::fromIth(*array, k));
      } else {
        Array<typename Element<T>::Kind> items;
        value.getArray(items);
        for (auto const &item : items) m_array.append(Element<T>::fromKind(item));
      }
    }
  });
}

template <class T, class C>
void ArrayValueImpl<T, C>::insertValue(unsigned int i, Value const &value) {
  detail::annotated(Element<T>::kClassName, "insertValue",
                    [&] { m_array.insert(i, Element<T>::fromValue(value)); });
}

template <class T, class C>
double ArrayValueImpl<T, C>::getIthDouble(unsigned int i) const {
  return Element<T>::toDouble(m_array[i]);
}

template <class T, class C>
int ArrayValueImpl<T, C>::getIthInteger(unsigned int i) const {
  return Element<T>::toInteger(m_array[i]);
}

template <class T, class C>
bool ArrayValueImpl<T, C>::getIthBoolean(unsigned int i) const {
  return Element<T>::toBoolean(m_array[i]);
}

template <class T, class C>
void ArrayValueImpl<T, C>::getIthString(unsigned int i, BaseString<unsigned short> &out) const {
  detail::annotated(Element<T>::kClassName, "getIthString", [&] { Element<T>::toString(m_array[i], out); });
}

template <class T, class C>
void ArrayValueImpl<T, C>::getIthValue(unsigned int i, ObjPtr<Value> &out) const {
  detail::annotated(Element<T>::kClassName, "getIthValue", [&] {
    T const &e = m_array[i];
    using Item = typename Element<T>::Item;
    Item *item = Item::newInstance();
    ObjPtr<Value> owner(item);
    Element<T>::toItem(e, *item);
    out = std::move(owner);
  });
}

template <class T, class C>
void ArrayValueImpl<T, C>::getIthValue(unsigned int i, Value &target) const {
  detail::annotated(Element<T>::kClassName, "getIthValue", [&] {
    T const &e = m_array[i];
    typename Element<T>::Item item;
    Element<T>::toItem(e, item);
    item.assignTo(target);
  });
}

template <class T, class C>
void ArrayValueImpl<T, C>::setIthValue(unsigned int i, Value const &value) {
  detail::annotated(Element<T>::kClassName, "setIthValue", [&] {
    T &slot = m_array[i];
    slot = Element<T>::fromValue(value);
  });
}

template <class T, class C>
void ArrayValueImpl<T, C>::append(T &element) {
  append(static_cast<T const &>(element));
}

template <class T, class C>
void ArrayValueImpl<T, C>::append(T const &element) {
  m_array.append(element);
}

template <class T, class C>
T *ArrayValueImpl<T, C>::getBuffer() {
  return m_array.getBuffer();
}

template <class T, class C>
unsigned int ArrayValueImpl<T, C>::find(T const &element, unsigned int start) const {
  unsigned int begin = start == kNotFound ? 0 : start + 1;
  unsigned int count = m_array.getSize();
  if (begin >= count) return kNotFound;
  unsigned int i = detail::scanFor<C>(m_array.getBuffer(), begin, count, element);
  return i == count ? kNotFound : i;
}

template <class T, class C>
unsigned int ArrayValueImpl<T, C>::get(T const &element, unsigned int start) const {
  unsigned int i = find(element, start);
  if (i == kNotFound) [[unlikely]]
    detail::failNotFound();
  return i;
}

template <class T, class C>
int ArrayValueImpl<T, C>::compareValues(ArrayValueImpl const &other) const {
  unsigned int count = m_array.getSize();
  unsigned int theirs = other.m_array.getSize();
  if (count != theirs) return theirs < count ? 1 : -1;
  T const *a = m_array.getBuffer();
  T const *b = other.m_array.getBuffer();
  unsigned int i = detail::firstDifference<C>(a, b, count);
  return i == count ? 0 : C::order(a[i], b[i]);
}

template class ArrayValueImpl<int, DefaultComparator<int>>;
template class ArrayValueImpl<double, DoubleComparator>;
template class ArrayValueImpl<BaseString<unsigned short>, StringComparator>;
template class ArrayValueImpl<bool, DefaultComparator<bool>>;
template class ArrayValueImpl<unsigned char, DefaultComparator<unsigned char>>;

}  // namespace quarn
