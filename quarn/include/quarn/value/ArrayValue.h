// ArrayValue.h - the abstract root of the typed arrays: an ordered list of values of one kind
//
// A property can hold a list of integers, doubles, strings, booleans or bytes.
// ArrayValue fixes what every such list offers beyond a Value: element access
// by index and by conversion (getIthX), setting, appending, inserting and
// removing elements from other values, reading a delimited text
// (fillFromString) and the per-element XML text. ArrayValueImpl<T, Comparator>
// stores the elements; the concrete classes (IntegerArrayValue and its kin)
// only add their identity and what is special about them.
//
// As a scalar, an array is its first element: getInteger() is getIthInteger(0)
// and so on, so an empty array throws InvalidIndexException(0, -1) there,
// while findInteger() and its kin answer false on an empty array. Indices are
// checked everywhere: an index at or beyond the size throws
// InvalidIndexException(index, size - 1). ArrayValue itself has no order
// ("Compare not implemented") and no item type ("getItemValueType() Not
// implemented for ArrayValue of type '%hs'"); the concrete classes supply both.
//
// Text: an array has no XML text of its own (hasXMLText is false, and
// getXMLText is element 0's text); it is written and read one element at a
// time with getIthXMLText / appendValueFromXMLText. setFromXMLText goes
// through the converter from StringValue, so it makes a one-element array of
// the text read by the element's getter ("12" -> [12]); ByteArrayValue
// instead reads and writes all its bytes as Base64.
//
// Pooled arrays come back from their pool empty (onActivate resizes to 0 and
// keeps the buffer); returning to the pool frees the buffer of an array of
// more than 1000 elements (ByteArrayValue: 10000), bounding pooled memory.
//
// The virtual operations continue Value's slots 1-36 with slots 37-51, in the
// order declared here.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/Export.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Abstract: create one of the concrete array classes instead.
class QUARN_API ArrayValue : public ValueGlue<ArrayValue, Value> {
  QUARN_VALUE_CLASS(ArrayValue, "Marlix.value.ArrayValue", ClassImp<ArrayValue>)

 public:
  // ---- Value's slots that ArrayValue answers for every array

  /// 14-17. Element 0 by getIthInteger / getIthBoolean / getIthDouble / getIthString.
  int getInteger() const override;
  bool getBoolean() const override;
  double getDouble() const override;
  void getString(BaseString<unsigned short> &out) const override;
  /// 22. A diagnostic text: `indent` spaces, the class name and "[<size>]",
  /// then each element's getIthString text on a line of its own, indented two
  /// spaces more ("(null)" for a null string element).
  void dump(BaseString<unsigned short> &out, int indent) const override;
  /// 25. Throws "getItemValueType() Not implemented for ArrayValue of type '%hs'".
  ClassTag const &getItemValueType() const override;
  /// 29-32. False on an empty array (output untouched); else element 0, true.
  bool findDouble(double &out) const override;
  bool findInteger(int &out) const override;
  bool findBoolean(bool &out) const override;
  bool findString(BaseString<unsigned short> &out) const override;
  /// 33. Throws "Compare not implemented".
  int compare(Value const &other) const override;

  // ---- new slots 37-51

  /// 37. Removes element `i`; later elements move one place toward the front.
  virtual void remove(unsigned int i) = 0;
  /// 38. Sets the size to `n`, keeping the buffer; callers write new elements before reading them.
  virtual void resize(unsigned int n) = 0;
  /// 39. Appends the content of `value`: one element for a scalar, every
  /// element for an array of several (in order), nothing for an empty value.
  virtual void appendValue(Value const &value) = 0;
  /// 40. Inserts the single scalar conversion of `value` before position `i` (never splices).
  virtual void insertValue(unsigned int i, Value const &value) = 0;
  /// 41. Replaces the contents with the fields of a delimited text (see ArrayValue.cpp):
  /// fields may be quoted with double quotes (a doubled quote stands for one) unless
  /// the delimiter is the double quote itself; each field is trimmed and appended
  /// as a StringValue, so every array converts the text in its own way.
  virtual void fillFromString(BaseString<unsigned short> const &text, unsigned short delimiter, bool skipEmpty);
  /// 42-45. Element `i` converted to each scalar kind.
  virtual double getIthDouble(unsigned int i) const = 0;
  virtual int getIthInteger(unsigned int i) const = 0;
  virtual bool getIthBoolean(unsigned int i) const = 0;
  virtual void getIthString(unsigned int i, BaseString<unsigned short> &out) const = 0;
  /// 46. A new scalar of the item class holding element `i`.
  virtual void getIthValue(unsigned int i, ObjPtr<Value> &out) const = 0;
  /// 47. Element `i` assigned to `target`, which converts it to its own class.
  virtual void getIthValue(unsigned int i, Value &target) const = 0;
  /// 48. Element `i`'s XML text as the scalar of the item class gives it.
  virtual bool getIthXMLText(unsigned int i, BaseString<unsigned short> &text,
                             BaseString<unsigned short> &second) const;
  /// 49. Reads a scalar of the item class from its XML text and appends it.
  virtual void appendValueFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &second);
  /// 50. Whether the whole array has one XML text: false here.
  virtual bool hasXMLText() const;
  /// 51. Element `i` set from the scalar conversion of `value`.
  virtual void setIthValue(unsigned int i, Value const &value) = 0;

  // ---- the pooled side

  /// Taken from the pool: empty, buffer kept.
  void onActivate() override;
  /// Returned to the pool: frees the buffer of more than kMaxPooledElements elements.
  void onDeactivate() override;

  /// Arrays with more elements than this lose their buffer when pooled.
  static constexpr unsigned int kMaxPooledElements = 1000;

 protected:
  ArrayValue() = default;
  ArrayValue(ArrayValue const &other) : Glue(other) {}
  ~ArrayValue() override;

  /// clear() when the array holds more than `limit` elements.
  void dropStorageAbove(unsigned int limit);
};

}  // namespace quarn
