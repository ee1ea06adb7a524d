// ByteArrayValue.h - a record property holding a list of bytes (0-255)
//
// Elements convert as integers from 0 to 255 (as a boolean != 0, as text
// "%d"); items are IntegerValues (getItemValueType reports IntegerValue, so a
// byte array deliberately presents integer items), and a byte taken from any
// value keeps the low 8 bits of its integer. Order: a longer array is
// greater, then the first differing byte, unsigned ([255] > [1]). Hash:
// h = h * 31 + byte, as BooleanArrayValue.
//
// Unlike the other arrays a byte array has one XML text: the Base64 of all its
// bytes (standard alphabet, '=' padding; "foo" -> "Zm9v"), read back with
// util::Base64::Decode ("Invalid Base64 text" leaves the bytes as they were).
// The abridged text of 60 bytes or more is the Base64 of the first 60, then
// "... (", the byte count and " bytes)".
//
// Payload: the count, then the bytes as they are ([1, 255] -> 08 01 FF).
// The pool keeps at most 50 instances out, and a byte array returning to it
// frees its buffer above 10000 bytes.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/ArrayValueImpl.h>
#include <quarn/value/DefaultComparator.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Pooled (at most 50 out at a time are kept): create with newInstance(), hand back with deleteInstance().
class QUARN_API ByteArrayValue
    : public ValueGlue<ByteArrayValue, ArrayValueImpl<unsigned char, DefaultComparator<unsigned char>>> {
  QUARN_VALUE_CLASS(ByteArrayValue, "Marlix.value.ByteArrayValue", PooledClassImp<ByteArrayValue, 50>)

 public:
  /// Byte arrays with more bytes than this lose their buffer when pooled.
  static constexpr unsigned int kMaxPooledBytes = 10000;
  /// Bytes shown by getAbridgedXMLText.
  static constexpr unsigned int kAbridgedBytes = 60;

  ByteArrayValue() = default;
  ByteArrayValue(ByteArrayValue const &other) : Glue(other) {}
  explicit ByteArrayValue(Array<unsigned char> const &elements) : Glue(std::in_place, elements) {}
  ByteArrayValue(unsigned char const *elements, unsigned int count) : Glue(std::in_place, elements, count) {}
  ~ByteArrayValue() override;

  /// The Base64 of all bytes; `second` empty; true.
  bool getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &second) const override;
  /// Replaces the bytes with the Base64 decoding of `text` (`second` is ignored).
  void setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &second) override;
  /// True: the whole array has one XML text.
  bool hasXMLText() const override;
  /// Frees the buffer of more than kMaxPooledBytes bytes.
  void onDeactivate() override;

  /// getXMLText below kAbridgedBytes bytes; else the Base64 of the first
  /// kAbridgedBytes bytes followed by "... (<count> bytes)". True.
  bool getAbridgedXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &second) const;
};

}  // namespace quarn
