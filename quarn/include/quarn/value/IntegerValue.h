// IntegerValue.h - a record property holding one signed 32-bit integer
//
// Coercions: the value itself; as a double exactly; as a boolean value != 0;
// as text in decimal ("-5"). Cleared state 0. Hash: the value's 32 bits.
// Values compare signed (-1, 0, 1); against another class by class name.
// Arithmetic wraps around in 32-bit two's complement, except division, which
// is deliberately left unchecked (see operator/=).
//
// Payload: the value as a stream integer, 1 to 5 bytes (7 -> 1C, 16 -> 01 10,
// 40000 -> 03 40 9C 00 00). XML text: the decimal text, read back through the
// converter from StringValue (util::stringToInteger).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API IntegerValue : public ValueGlue<IntegerValue, Value> {
  QUARN_VALUE_CLASS(IntegerValue, "Marlix.value.IntegerValue", PooledClassImp<IntegerValue, -1>)

 public:
  IntegerValue() = default;
  explicit IntegerValue(int value) : m_value(value) {}
  IntegerValue(IntegerValue const &other) : Glue(other), m_value(other.m_value) {}
  ~IntegerValue() override;

  IntegerValue &operator=(int value) {
    m_value = value;
    return *this;
  }
  IntegerValue &operator=(IntegerValue const &other) {
    m_value = other.m_value;
    return *this;
  }
  void setInteger(int value) noexcept { m_value = value; }
  /// +=, -= and *= wrap around in 32 bits.
  IntegerValue &operator+=(int value) {
    m_value = static_cast<int>(static_cast<unsigned int>(m_value) + static_cast<unsigned int>(value));
    return *this;
  }
  IntegerValue &operator-=(int value) {
    m_value = static_cast<int>(static_cast<unsigned int>(m_value) - static_cast<unsigned int>(value));
    return *this;
  }
  IntegerValue &operator*=(int value) {
    m_value = static_cast<int>(static_cast<unsigned int>(m_value) * static_cast<unsigned int>(value));
    return *this;
  }
  /// Truncating signed division, deliberately without any guard: dividing by
  /// zero, or -2147483648 by -1, is the platform's integer-division fault.
  /// Callers must not do either.
  IntegerValue &operator/=(int value) {
    m_value /= value;
    return *this;
  }

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
  /// "Marlix.value.IntegerArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  void clear() override;
  /// Nothing to release.
  void onDeactivate() override;

 private:
  int m_value = 0;
};

}  // namespace quarn
