// MissingValue.h - a null value that also says why the value is missing
//
// It behaves as a NullValue in every respect but three: it answers to its
// own tag (and to NullValue's and Value's), two missing values compare by
// their missing strings (unit by unit, null first), and assignToSameClass
// copies the missing string. The missing string is deliberately outside the
// value's content: clear() keeps it (so does a trip through the pool, which
// only clears), it is not written to or read from a byte stream, and it is
// not returned by getString, which gives the empty text as for any null.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API MissingValue : public ValueGlue<MissingValue, NullValue> {
  QUARN_VALUE_CLASS(MissingValue, "Marlix.value.MissingValue", PooledClassImp<MissingValue, -1>)

 public:
  /// A null missing string.
  MissingValue() = default;
  MissingValue(MissingValue const &other) : Glue(other), m_missing(other.m_missing) {}
  /// A missing value without a missing string (or with `other`'s, when it is a MissingValue).
  explicit MissingValue(NullValue const &other);
  ~MissingValue() override;

  MissingValue &operator=(MissingValue const &other) {
    m_missing = other.m_missing;
    return *this;
  }
  /// Takes `other`'s missing string when it is a MissingValue, else none.
  MissingValue &operator=(NullValue const &other);

  BaseString<unsigned short> const &getMissingString() const noexcept { return m_missing; }
  void setMissingString(BaseString<unsigned short> const &text) { m_missing = text; }

  /// Copies the missing string.
  void assignToSameClass(Value &target) const override;
  /// Two missing values compare by their missing strings; other classes by class name.
  int compare(Value const &other) const override;

 private:
  BaseString<unsigned short> m_missing;
};

}  // namespace quarn
