// NullValue.h - the value of a property that holds nothing
//
// A null value refuses to be read as an integer or a boolean ("Invalid
// request: a NullValue type cannot hold a value"; findInteger / findBoolean
// answer false), but reads as a quiet NaN as a double and as the empty text
// as a string (findDouble / findString answer true). These asymmetries are
// deliberate. It counts 0 items, turns every array coercion into an empty
// array, hashes to 0, has no XML text (getXMLText answers false) and no
// payload. Two null values compare equal; against any other class (a
// MissingValue too) they order by class name.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API NullValue : public ValueGlue<NullValue, Value> {
  QUARN_VALUE_CLASS(NullValue, "Marlix.value.NullValue", PooledClassImp<NullValue, -1>)

 public:
  NullValue() = default;
  NullValue(NullValue const &other) : Glue(other) {}
  NullValue &operator=(NullValue const &) { return *this; }
  ~NullValue() override;

  /// No payload.
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  /// 0.
  unsigned int getSize() const override;
  /// Refuses.
  int getInteger() const override;
  /// Refuses.
  bool getBoolean() const override;
  /// A quiet NaN.
  double getDouble() const override;
  /// The empty text.
  void getString(BaseString<unsigned short> &out) const override;
  /// Each leaves the array empty.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// "Marlix.value.NullArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  /// False: a null value holds no integer.
  bool findInteger(int &out) const override;
  /// False: a null value holds no boolean.
  bool findBoolean(bool &out) const override;
  int compare(Value const &other) const override;
  /// Both texts empty; false (no XML text).
  bool getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const override;
  /// Nothing to clear.
  void clear() override;
  /// Nothing to release.
  void onDeactivate() override;

 private:
  [[noreturn]] static void InvalidRequest();
};

}  // namespace quarn
