// BooleanValue.h - a record property holding one boolean
//
// Coercions: 1 or 0; 1.0 or 0.0; the text "true" or "false". Cleared state
// false. Hash 1 or 0. Comparison: false < true (-1, 0, 1); against another
// class by class name.
//
// Payload: one byte, 01 or 00 (reading, any non-zero byte is true). XML text:
// "true" / "false", read back through the converter from StringValue
// (util::stringToBoolean).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BooleanValue : public ValueGlue<BooleanValue, Value> {
  QUARN_VALUE_CLASS(BooleanValue, "Marlix.value.BooleanValue", PooledClassImp<BooleanValue, -1>)

 public:
  BooleanValue() = default;
  explicit BooleanValue(bool value) : m_value(value) {}
  BooleanValue(BooleanValue const &other) : Glue(other), m_value(other.m_value) {}
  ~BooleanValue() override;

  BooleanValue &operator=(bool value) {
    m_value = value;
    return *this;
  }
  BooleanValue &operator=(BooleanValue const &other) {
    m_value = other.m_value;
    return *this;
  }
  void setBoolean(bool value) noexcept { m_value = value; }

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
  /// "Marlix.value.BooleanArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  void clear() override;
  /// Nothing to release.
  void onDeactivate() override;

 private:
  bool m_value = false;
};

}  // namespace quarn
