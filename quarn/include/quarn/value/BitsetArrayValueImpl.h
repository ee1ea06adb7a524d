// BitsetArrayValueImpl.h - the element storage and behaviour shared by the two bitset arrays
//
// BitsetArrayValueImpl<Element> holds whole bitsets (BitsetValue or
// BitFingerprintValue) by value in one Array<Element> and implements every
// element operation of ArrayValue over them; BitsetArrayValue and
// BitFingerprintArrayValue add only their identity. Instantiated inside
// libquarn for exactly those two element types.
//
// Elements: getIthInteger / getIthBoolean / getIthDouble are the element's
// first-word coercions, getIthString its 1-based positions ("1 3 5");
// getArray gives one such entry per element. getIthValue(i, target) and
// setIthValue(i, value) go through Value::assignTo, so any value with a
// converter to or from the element class can be read or stored;
// getIthValue(i, out) hands out a pooled copy of element i. appendValue
// appends one element converted from a value of size 1 and splices an array
// of several elements (each converted through getIthValue); insertValue never
// splices. resize gives empty bitsets (0 bits) for new elements. Every element
// operation is annotated with the class and operation name
// ("BitsetArrayValue::setIthValue: Tessary exception caught"), and a failed
// conversion changes nothing. An index at or beyond the element count throws
// InvalidIndexException(index, count - 1).
//
// Order (compare): against another class by class name (the other's first);
// an array with more elements orders first (-1 when the other has fewer,
// deliberately the opposite of the typed arrays); arrays of equal length give
// the first non-zero element compare, else 0. Hash: h = h * 31 + element hash.
//
// Payload: the element count as a stream int, then each element's own payload
// (bit count, word count, words). An empty array is the single byte 00; one
// empty bitset is 04 00 00. The count is not trusted: storage grows as
// elements arrive, a count the stream cannot hold ends in the EOF message of
// the primitive that ran short, a negative count throws "Invalid array element
// count %d", and a failed read leaves the array as it was.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

template <class Element>
class QUARN_API BitsetArrayValueImpl : public ArrayValue {
 public:
  using ElementType = Element;

  // ---- Value's and ArrayValue's slots, in slot order

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// The element count.
  unsigned int getSize() const override;
  /// One entry per element: getString / getDouble / getInteger / getBoolean of each.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// The element class.
  ClassTag const &getItemValueType() const override;
  /// Copies the elements into `target`, an array of this value's class.
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  /// No elements, storage freed.
  void clear() override;
  void remove(unsigned int i) override;
  /// New elements are empty bitsets.
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

  // ---- non-virtual

  /// Appends a copy of `element`.
  void append(Element const &element);
  /// Checked element access.
  Element &operator[](unsigned int i) { return m_array[i]; }
  Element const &operator[](unsigned int i) const { return m_array[i]; }
  /// The elements, for reading.
  Array<Element> const &getElements() const noexcept { return m_array; }
  /// Replaces the elements with copies of `elements`.
  void setElements(Array<Element> const &elements);
  /// Replaces the elements with `elements`, taking over its buffer.
  void setElements(Array<Element> &&elements) noexcept;

 protected:
  BitsetArrayValueImpl() = default;
  BitsetArrayValueImpl(BitsetArrayValueImpl const &other) : ArrayValue(other), m_array(other.m_array) {}
  explicit BitsetArrayValueImpl(Array<Element> const &elements) : m_array(elements) {}
  ~BitsetArrayValueImpl() override;

  Array<Element> m_array;
};

extern template class QUARN_API BitsetArrayValueImpl<BitsetValue>;
extern template class QUARN_API BitsetArrayValueImpl<BitFingerprintValue>;

}  // namespace quarn
