// NullArrayValue.h - a record property holding a list of null values
//
// Every element is a plain NullValue (a MissingValue appended is kept as one),
// so the array records only how many there are: no storage per element, and a
// count costs the same four bytes whatever it is.
// Element conversions are the null value's own: getIthDouble is NaN,
// getIthString the empty text, getIthInteger and getIthBoolean refuse
// ("Invalid request: a NullValue type cannot hold a value"); getArray converts
// every element the same way, so only an empty array reads as integers or
// booleans. appendValue adds one null element for a scalar and one per item
// for an array value; insertValue adds one; setIthValue only checks the index
// (a null element stays null).
//
// Order: against another class by class name; otherwise by count alone
// (3 against 5 elements is -1, 4 against 4 is 0). Hash: 0 (every element
// hashes to 0).
//
// Payload: the count as a stream int, then each element's NullValue payload,
// which is empty (three elements -> 0C). As that payload carries no bytes, the
// data cannot vouch for the count: a count above kMaxStreamCount throws
// "NullArrayValue element count %d exceeds %u", a negative one "Invalid array
// element count %d", and a failed read leaves the array as it was.
//
// Indices at or beyond the count throw InvalidIndexException(index, count - 1).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API NullArrayValue : public ValueGlue<NullArrayValue, ArrayValue> {
  QUARN_VALUE_CLASS(NullArrayValue, "Marlix.value.NullArrayValue", PooledClassImp<NullArrayValue, -1>)

 public:
  /// The most elements a null array read from a stream may hold.
  static constexpr unsigned int kMaxStreamCount = 1u << 20;

  NullArrayValue() = default;
  NullArrayValue(NullArrayValue const &other) : Glue(other), m_count(other.m_count) {}
  /// As many null elements as `elements` holds.
  explicit NullArrayValue(Array<NullValue> const &elements) : m_count(elements.getSize()) {}
  ~NullArrayValue() override;

  NullArrayValue &operator=(NullArrayValue const &other);
  NullArrayValue &operator=(Array<NullValue> const &elements);

  /// Appends one null element.
  void append(NullValue const &element);

  // ---- Value's slots

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// The element count.
  unsigned int getSize() const override;
  /// Every element by NullValue's getString / getDouble / getInteger / getBoolean.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// NullValue's tag.
  ClassTag const &getItemValueType() const override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  /// No elements.
  void clear() override;

  // ---- ArrayValue's slots

  void remove(unsigned int i) override;
  void resize(unsigned int n) override;
  /// One null element for a scalar, getSize() of them for an array value.
  void appendValue(Value const &value) override;
  /// One null element before position `i` (i == count appends).
  void insertValue(unsigned int i, Value const &value) override;
  double getIthDouble(unsigned int i) const override;
  int getIthInteger(unsigned int i) const override;
  bool getIthBoolean(unsigned int i) const override;
  void getIthString(unsigned int i, BaseString<unsigned short> &out) const override;
  /// A new NullValue.
  void getIthValue(unsigned int i, ObjPtr<Value> &out) const override;
  /// Element `i` assigned to `target` (Value::assignTo).
  void getIthValue(unsigned int i, Value &target) const override;
  /// Checks `i`; the element stays null.
  void setIthValue(unsigned int i, Value const &value) override;

 private:
  /// Throws InvalidIndexException(i, count - 1) for an index at or beyond the count.
  void checkIndex(unsigned int i) const;

  unsigned int m_count = 0;
};

}  // namespace quarn
