// StringFingerprintValue.h - a list of string keys, told apart from a plain string list
//
// A string fingerprint stores, converts, searches, hashes and serialises
// exactly as a StringArrayValue (elements kept in the order given, null and
// empty elements distinct), but under its own class: compare orders it
// against any other class by class name, so a fingerprint and a plain array
// with equal elements do not compare equal (while they hash alike).
// Converters copy the elements between it and StringArrayValue.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API StringFingerprintValue : public ValueGlue<StringFingerprintValue, StringArrayValue> {
  QUARN_VALUE_CLASS(StringFingerprintValue, "Marlix.value.StringFingerprintValue",
                    PooledClassImp<StringFingerprintValue, -1>)

 public:
  StringFingerprintValue() = default;
  StringFingerprintValue(StringFingerprintValue const &other) : Glue(other) {}
  /// Copies the elements of a plain string array.
  explicit StringFingerprintValue(StringArrayValue const &elements) : Glue(std::in_place, elements) {}
  explicit StringFingerprintValue(Array<BaseString<unsigned short>> const &elements) : Glue(std::in_place, elements) {}
  ~StringFingerprintValue() override;

  StringFingerprintValue &operator=(StringFingerprintValue const &other) {
    setElements(other.getElements());
    return *this;
  }
  StringFingerprintValue &operator=(Array<BaseString<unsigned short>> const &elements) {
    setElements(elements);
    return *this;
  }
  /// Copies the elements; the value stays a fingerprint.
  StringFingerprintValue &operator=(StringArrayValue const &other) {
    setElements(other.getElements());
    return *this;
  }
};

}  // namespace quarn
