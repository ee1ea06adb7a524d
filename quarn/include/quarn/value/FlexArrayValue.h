// FlexArrayValue.h - a record property holding a list of flexible values
//
// Each element is a FlexValue that keeps its own native type, so one list can
// hold an integer, a float and a narrow string side by side and write each
// with its type. Values of any class that converts to FlexValue are stored
// through one scratch FlexValue (appendValue, insertValue, setIthValue each
// store exactly one element: an array value is not spliced). Element
// conversions (getIthX, getArray) are the elements' own coercions; items
// (getIthValue, getIthXMLText, appendValueFromXMLText) are FlexValues, so an
// element's XML text carries its type in the second text.
//
// Order: against another class by class name; a longer array is greater; else
// the first non-zero FlexValue::compare of the elements (numbers compare only
// as "same" or "different"). Hash: h = h * 31 + element hash (empty: 0).
//
// Payload: the count as a stream int, then each element's FlexValue payload
// ([null, 1.0] -> 08 04 10 01). The count read back is not trusted: elements
// are stored as they arrive, a negative count throws "Invalid array element
// count %d", and a failed read (a short stream, an unknown code) leaves the
// array as it was.
//
// Indices at or beyond the count throw InvalidIndexException(index, count - 1)
// (annotated "FlexArrayValue::<operation>: Tessary exception caught" by the
// element operations that annotate). A pooled array comes back empty; when
// returned it frees its elements' strings, and its buffer above 1000 elements.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API FlexArrayValue : public ValueGlue<FlexArrayValue, ArrayValue> {
  QUARN_VALUE_CLASS(FlexArrayValue, "Marlix.value.FlexArrayValue", PooledClassImp<FlexArrayValue, -1>)

 public:
  FlexArrayValue() = default;
  FlexArrayValue(FlexArrayValue const &other) : Glue(other), m_array(other.m_array) {}
  explicit FlexArrayValue(Array<FlexValue> const &elements) : m_array(elements) {}
  ~FlexArrayValue() override;

  FlexArrayValue &operator=(FlexArrayValue const &other);
  FlexArrayValue &operator=(Array<FlexValue> const &elements);

  // ---- Value's slots

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// The element count.
  unsigned int getSize() const override;
  /// Every element by its getString / getDouble / getInteger / getBoolean.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// FlexValue's tag.
  ClassTag const &getItemValueType() const override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  /// Frees the elements and the buffer.
  void clear() override;

  // ---- ArrayValue's slots

  void remove(unsigned int i) override;
  /// New elements are null FlexValues.
  void resize(unsigned int n) override;
  /// `value` stored as one FlexValue at the end.
  void appendValue(Value const &value) override;
  /// `value` stored as one FlexValue before position `i` (i == count appends).
  void insertValue(unsigned int i, Value const &value) override;
  double getIthDouble(unsigned int i) const override;
  int getIthInteger(unsigned int i) const override;
  bool getIthBoolean(unsigned int i) const override;
  void getIthString(unsigned int i, BaseString<unsigned short> &out) const override;
  /// A new FlexValue holding a copy of element `i`.
  void getIthValue(unsigned int i, ObjPtr<Value> &out) const override;
  /// Element `i` assigned to `target` (Value::assignTo).
  void getIthValue(unsigned int i, Value &target) const override;
  /// Element `i` replaced by `value` stored as a FlexValue.
  void setIthValue(unsigned int i, Value const &value) override;

  /// Returned to the pool: the buffer goes above kMaxPooledElements elements,
  /// else only the elements (and their strings) go.
  void onDeactivate() override;

  // ---- non-virtual

  /// Appends a copy of `element`.
  void append(FlexValue const &element) { m_array.append(element); }
  /// Checked element access.
  FlexValue &operator[](unsigned int i) { return m_array[i]; }
  FlexValue const &operator[](unsigned int i) const { return m_array[i]; }
  /// The elements.
  Array<FlexValue> &getArray() noexcept { return m_array; }
  Array<FlexValue> const &getArray() const noexcept { return m_array; }

 private:
  /// The scratch FlexValue holding `value` (converted through Value::assignTo).
  FlexValue &convertIn(Value const &value);

  Array<FlexValue> m_array;
  /// Where values of other classes are converted on their way in.
  FlexValue m_scratch;
};

}  // namespace quarn
