// DoubleValue.h - a record property holding one IEEE-754 double
//
// Coercions: as an integer truncated toward zero (NaN or outside the 32-bit
// range gives -2147483648); as a boolean value != 0.0 (NaN is true, -0.0
// false); as text util::doubleToString's shortest form. Cleared state 0.0.
// Hash: the 31-polynomial over the double's eight little-endian bytes, so 0.0
// and -0.0 hash differently although they compare equal. Comparison: 0 when
// equal, -1 when less, 1 otherwise - also when either side is NaN and for
// every value of another class (deliberately no class-name order here).
//
// Payload: the value as a stream double (0.0 and -0.0 -> 00, 1.0 -> 01,
// 0.5 -> 02 00 00 00 00 00 00 E0 3F). XML text: the text form, read back
// through the converter from StringValue (util::stringToDouble).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API DoubleValue : public ValueGlue<DoubleValue, Value> {
  QUARN_VALUE_CLASS(DoubleValue, "Marlix.value.DoubleValue", PooledClassImp<DoubleValue, -1>)

 public:
  DoubleValue() = default;
  explicit DoubleValue(double value) : m_value(value) {}
  DoubleValue(DoubleValue const &other) : Glue(other), m_value(other.m_value) {}
  ~DoubleValue() override;

  DoubleValue &operator=(double value) {
    m_value = value;
    return *this;
  }
  DoubleValue &operator=(DoubleValue const &other) {
    m_value = other.m_value;
    return *this;
  }
  void setDouble(double value) { m_value = value; }

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  int getInteger() const override;
  bool getBoolean() const override;
  double getDouble() const override;
  void getString(BaseString<unsigned short> &out) const override;
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// "Marlix.value.DoubleArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  void clear() override;
  /// Nothing to release.
  void onDeactivate() override;

 private:
  double m_value = 0.0;
};

}  // namespace quarn
