// ValueArrayValue.h - a record property holding a list of values of any classes
//
// Each element is a value object of its own class (an integer next to a text
// next to a bitset). The array owns its elements: it makes them through their
// classes (cloneValue, or by name when reading a stream) and hands each back
// with deleteInstance() when it leaves the array, so pooled elements return
// to their pools. Element conversions (getIthX, getArray) are each element's
// own coercions; appendValue(Value const &), insertValue and setIthValue store
// a copy of the value as one element (an array value is not spliced), while
// appendValue(Value *) takes the object itself. Growing with resize appends
// NullValues. Items are of any class (getItemValueType is Value's tag), so
// getIthValue(i, ObjPtr) hands out a copy of the element, and an element
// cannot be made from XML text alone (appendValueFromXMLText refuses with
// "It is invalid to create an interface instance: Marlix.value.Value").
//
// Order: against another class by class name; a longer array is greater; else
// the first non-zero compare of the elements, this one's against the other's.
// Hash: h = h * 31 + element hash (empty: 0).
//
// Payload: the count as a stream int, then per element its class name framed
// as L = characters + 1 (0 for no name) as a stream int and the L - 1 bytes
// without a terminator, then the element's own payload. One IntegerValue 7:
//   04  01 1A  "Marlix.value.IntegerValue" (25 bytes)  1C
// Reading makes each element by its class name (a bound class, else the
// component library registered for the name, when the stream's
// StreamLoadingPolicy lets it load) and lets it read its payload. Each thread
// remembers the classes of the names it read last, so a run of records with
// the same classes makes its elements without the tag registry (no lock, no
// allocation); from a memory stream the names are compared where they lie.
// The elements read go into the buffer the array kept, so a pooled array reads
// without allocating. Writing takes each name and its length from the
// element's tag. Nothing read is trusted: the count reserves room for at most
// 64 elements up front, a class name must be 1 to kMaxClassNameLength bytes
// without a zero byte, a name that no class serves fails as creation by name
// fails ("Class %hs not registered."), a library the policy refuses is not
// loaded ("Class %hs is not loaded and this stream may not load it"), a class
// that is not a value is refused ("Class %hs is not a value": before anything
// is made when the class is bound, else the object the library made is handed
// back), and arrays nested more than kMaxNesting deep inside one another fail
// with "ValueArrayValue nesting deeper than 64 levels". Every failure is
// annotated "ValueArrayValue::deserialize: Tessary exception caught" (once per
// nesting level), hands back the elements made so far and leaves the array as
// it was.
//
// Indices at or beyond the count throw InvalidIndexException(index, count - 1).
// A pooled array comes back empty; when returned it hands back its elements
// (and frees its buffer above 1000 elements).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API ValueArrayValue : public ValueGlue<ValueArrayValue, ArrayValue> {
  QUARN_VALUE_CLASS(ValueArrayValue, "Marlix.value.ValueArrayValue", PooledClassImp<ValueArrayValue, -1>)

 public:
  /// Value arrays read from a stream may sit inside one another this deep.
  static constexpr int kMaxNesting = 64;
  /// The longest element class name read from a stream, in bytes.
  static constexpr unsigned int kMaxClassNameLength = 1024;

  ValueArrayValue() = default;
  /// Copies of `other`'s elements.
  ValueArrayValue(ValueArrayValue const &other);
  /// Copies of the values (each must be non-null).
  explicit ValueArrayValue(Array<Value *> const &values);
  ~ValueArrayValue() override;

  /// Replaces the elements with copies (the old ones are handed back).
  ValueArrayValue &operator=(ValueArrayValue const &other);
  ValueArrayValue &operator=(Array<Value *> const &values);

  /// Element `i` itself.
  Value &getIthValue(unsigned int i) { return *m_array[i]; }
  Value const &getIthValue(unsigned int i) const { return *m_array[i]; }
  Value &operator[](unsigned int i) { return *m_array[i]; }
  Value const &operator[](unsigned int i) const { return *m_array[i]; }
  /// The element objects, in order.
  Array<Value *> const &getElements() const noexcept { return m_array; }
  /// Exchanges the elements of the two arrays.
  void swap(ValueArrayValue &other) noexcept { m_array.swap(other.m_array); }

  /// Appends `value` itself: the array owns it from now on, even when this
  /// fails (it is then handed back). A null `value` throws "ValueArrayValue
  /// cannot hold a null element".
  void appendValue(Value *value);
  /// Appends the object `value` owns, which passes to the array (no copy):
  /// `record.appendValue(ObjPtr<Value>(IntegerValue::newInstance()))`.
  void appendValue(ObjPtr<Value> value) { appendValue(value.detach()); }

  // ---- Value's slots

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// The element count.
  unsigned int getSize() const override;
  /// Every element by its own getString / getDouble / getInteger / getBoolean.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// Value's tag: items are of any class.
  ClassTag const &getItemValueType() const override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  /// Hands back every element and frees the buffer.
  void clear() override;

  // ---- ArrayValue's slots

  void remove(unsigned int i) override;
  /// Shrinking hands back the elements past `n`; growing appends NullValues.
  void resize(unsigned int n) override;
  /// Appends a copy of `value`.
  void appendValue(Value const &value) override;
  /// Inserts a copy of `value` before position `i` (i == count appends).
  void insertValue(unsigned int i, Value const &value) override;
  double getIthDouble(unsigned int i) const override;
  int getIthInteger(unsigned int i) const override;
  bool getIthBoolean(unsigned int i) const override;
  void getIthString(unsigned int i, BaseString<unsigned short> &out) const override;
  /// A copy of element `i`.
  void getIthValue(unsigned int i, ObjPtr<Value> &out) const override;
  /// Element `i` assigned to `target` (Value::assignTo).
  void getIthValue(unsigned int i, Value &target) const override;
  /// Element `i` replaced by a copy of `value`.
  void setIthValue(unsigned int i, Value const &value) override;

  /// Returned to the pool: hands back the elements (and frees the buffer
  /// above kMaxPooledElements elements).
  void onDeactivate() override;

 private:
  Array<Value *> m_array;
};

}  // namespace quarn
