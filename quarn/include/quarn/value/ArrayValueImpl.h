// ArrayValueImpl.h - the element storage and shared behaviour of the five typed arrays
//
// ArrayValueImpl<T, Comparator> holds the elements in one Array<T> and does
// everything the typed arrays share: element conversions, search, order, hash,
// byte-stream form, setting and appending from other values. What differs by
// element type (the item class, the conversions, the hash, the element coder)
// comes from a per-type element description inside the library; the
// Comparator decides equality and order. The template is instantiated inside
// libquarn for exactly the five element types of the concrete classes:
// int, double, BaseString<unsigned short>, bool and unsigned char.
//
// Search: find(x, start) scans from start + 1, or from 0 when start is
// kNotFound (0xFFFFFFFF), and answers the first index whose element the
// comparator calls equal to x, or kNotFound; pass the previous answer to find
// the next one. get() is find that throws "ArrayValueImpl::get, array value
// was not found" on a miss.
//
// Order (compareValues, and compare against a value of the same class): a
// longer array is greater whatever its elements; arrays of one length compare
// at the first index whose elements differ, by the comparator (-1, 0 or 1).
// Against another class: the other's registered class name against this
// one's, as signed 8-bit characters (other first, so the sign is that of
// "other minus this").
//
// Payload: the element count as a stream int, then each element (int: stream
// int; double: stream double; string: stream string; bool: one byte 01/00;
// byte: one byte). Boolean [true, false] is 08 01 00 (the count 2 is the
// one-byte int 08). The count read back is not trusted: storage grows only as
// elements actually arrive, a count the data cannot hold fails with the EOF
// message of the primitive that ran short (after consuming what is there),
// and a negative count throws "Invalid array element count %d". On any
// failure the array keeps the elements it had.
//
// The virtual operations continue ArrayValue's slots with slots 52-57, in the
// order declared here.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/DefaultComparator.h>
#include <quarn/value/DoubleComparator.h>
#include <quarn/value/StringComparator.h>
#include <quarn/value/Value.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

template <class T, class Comparator>
class QUARN_API ArrayValueImpl : public ArrayValue {
 public:
  using ElementType = T;
  using ComparatorType = Comparator;

  /// What find answers on a miss, and the start that scans from index 0.
  static constexpr unsigned int kNotFound = 0xFFFFFFFFu;

  // ---- Value's and ArrayValue's slots

  /// 5. Integers: the 31-polynomial of the elements; booleans and bytes: the
  /// same over the unsigned byte; doubles: XOR of util::doubleHashCode;
  /// strings: XOR of the 31-polynomial of each string's low unit bytes.
  unsigned int hash() const override;
  /// 8-9. The payload of the file comment.
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// 13. The element count.
  unsigned int getSize() const override;
  /// 18-21. Every element converted by getIthString / getIthDouble / getIthInteger /
  /// getIthBoolean, in order, replacing the output's contents.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// 25. The item class: IntegerValue (also for bytes), DoubleValue, StringValue or BooleanValue.
  ClassTag const &getItemValueType() const override;
  /// 28. Copies the elements into `target`, an array of this value's class.
  void assignToSameClass(Value &target) const override;
  /// 33. compareValues for the same class; class-name order otherwise.
  int compare(Value const &other) const override;
  /// 36. Frees the buffer (size and capacity 0).
  void clear() override;
  void remove(unsigned int i) override;
  void resize(unsigned int n) override;
  void appendValue(Value const &value) override;
  void insertValue(unsigned int i, Value const &value) override;
  double getIthDouble(unsigned int i) const override;
  int getIthInteger(unsigned int i) const override;
  bool getIthBoolean(unsigned int i) const override;
  void getIthString(unsigned int i, BaseString<unsigned short> &out) const override;
  void getIthValue(unsigned int i, ObjPtr<Value> &out) const override;
  void getIthValue(unsigned int i, Value &target) const override;
  void setIthValue(unsigned int i, Value const &value) override;

  // ---- new slots 52-57

  /// 52-53. Appends one element (one body for both).
  virtual void append(T &element);
  virtual void append(T const &element);
  /// 54. The elements (getSize() of them); null before the first allocation.
  virtual T *getBuffer();
  /// 55. The first index after `start` holding an element equal to `element`, or kNotFound.
  virtual unsigned int find(T const &element, unsigned int start = kNotFound) const;
  /// 56. find, throwing "ArrayValueImpl::get, array value was not found" on a miss.
  virtual unsigned int get(T const &element, unsigned int start = kNotFound) const;
  /// 57. -1, 0 or 1 by the order of the file comment.
  virtual int compareValues(ArrayValueImpl const &other) const;

  // ---- non-virtual

  T const *getBuffer() const noexcept { return m_array.getBuffer(); }
  /// Checked element access.
  T &operator[](unsigned int i) { return m_array[i]; }
  T const &operator[](unsigned int i) const { return m_array[i]; }
  /// The element container, for reading.
  Array<T> const &getElements() const noexcept { return m_array; }
  /// Replaces the elements with copies of the `count` at `elements` (which
  /// may point into this array), in the storage the array kept: no allocation
  /// when its capacity (and, for strings, each string's) is large enough. A
  /// failed allocation leaves the array valid, its elements partly replaced.
  void setElements(T const *elements, unsigned int count);
  /// Replaces the elements with copies of `elements`, as setElements(buffer, size) does.
  void setElements(Array<T> const &elements) { setElements(elements.getBuffer(), elements.getSize()); }
  /// Replaces the elements with `elements`, taking over its buffer.
  void setElements(Array<T> &&elements) noexcept { m_array = static_cast<Array<T> &&>(elements); }

 protected:
  ArrayValueImpl() = default;
  ArrayValueImpl(ArrayValueImpl const &other) : ArrayValue(other), m_array(other.m_array) {}
  explicit ArrayValueImpl(Array<T> const &elements) : m_array(elements) {}
  /// Copies `count` elements from `elements`, in order.
  ArrayValueImpl(T const *elements, unsigned int count);
  ~ArrayValueImpl() override;

  Array<T> m_array;
};

extern template class QUARN_API ArrayValueImpl<int, DefaultComparator<int>>;
extern template class QUARN_API ArrayValueImpl<double, DoubleComparator>;
extern template class QUARN_API ArrayValueImpl<BaseString<unsigned short>, StringComparator>;
extern template class QUARN_API ArrayValueImpl<bool, DefaultComparator<bool>>;
extern template class QUARN_API ArrayValueImpl<unsigned char, DefaultComparator<unsigned char>>;

}  // namespace quarn
