// StringValue.h - a record property holding one UTF-16 text
//
// The text may be null (no buffer), which is a different value from the
// empty text: null sorts before every other text and stays distinct on the
// wire. Narrow text (`char const *`) is widened byte by byte, each byte
// becoming the code unit of the same number (no UTF-8 decoding).
//
// Coercions go through quarnCore's readers with no end pointer, so a text
// that is not wholly a number or boolean throws their Exception; as an
// integer array the whole text is read as a list (util::stringToIntegerArray,
// its result ignored), while every other coercion yields one element.
// Comparison: unit by unit as unsigned 16-bit numbers (difference at the
// first difference); against another class by class name. Hash: the
// 31-polynomial over the units up to the terminator (null and empty hash 0).
//
// clear() keeps the buffer (length 0; a null text stays null); a pooled value
// keeps its buffer for the next user unless its capacity exceeds 1000 units.
//
// Payload: the text as a stream string (null -> 00, empty -> 04, "\u00E9" in
// version 2 -> 08 C3 A9). XML text: the text with & " ' > < escaped as
// entities (ampersands first); read back unchanged, since the XML reader has
// already undone the entities.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API StringValue : public ValueGlue<StringValue, Value> {
  QUARN_VALUE_CLASS(StringValue, "Marlix.value.StringValue", PooledClassImp<StringValue, -1>)

 public:
  /// Capacities (in units) above this are freed when the value returns to its pool.
  static constexpr unsigned int kMaxPooledCapacity = 1000;

  /// A null text.
  StringValue() = default;
  explicit StringValue(unsigned short const *text) : m_text(text) {}
  /// Widens `text` byte by byte.
  explicit StringValue(char const *text) : m_text(text) {}
  StringValue(StringValue const &other) : Glue(other), m_text(other.m_text) {}
  ~StringValue() override;

  StringValue &operator=(BaseString<unsigned short> const &text) {
    m_text = text;
    return *this;
  }
  StringValue &operator=(unsigned short const *text) {
    m_text = text;
    return *this;
  }
  StringValue &operator=(char const *text) {
    m_text = BaseString<unsigned short>(text);
    return *this;
  }
  StringValue &operator=(StringValue const &other) {
    m_text = other.m_text;
    return *this;
  }

  /// Replaces the text with the `length` units at `text` (a null `text` makes
  /// it null), in the buffer the value kept: no allocation when it is large
  /// enough, as for a pooled value reused. `text` may point into this text.
  void setString(unsigned short const *text, unsigned int length) {
    if (text)
      m_text.assign(text, length);
    else
      m_text.setNull();
  }

  /// The held text.
  BaseString<unsigned short> const &getString() const noexcept { return m_text; }
  BaseString<unsigned short> &getString() noexcept { return m_text; }

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  int getInteger() const override;
  bool getBoolean() const override;
  double getDouble() const override;
  void getString(BaseString<unsigned short> &out) const override;
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  void getArray(Array<double> &out) const override;
  /// Reads the whole text as a list of integers.
  void getArray(Array<int> &out) const override;
  void getArray(Array<bool> &out) const override;
  /// "Marlix.value.StringArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  int compare(Value const &other) const override;
  /// The text with & " ' > < replaced by entities.
  bool getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const override;
  /// Takes `text` unchanged (no entity is undone).
  void setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &extra) override;
  void clear() override;
  /// Frees a buffer whose capacity exceeds kMaxPooledCapacity (the text becomes null).
  void onDeactivate() override;

  /// Takes over the buffer of `text` without copying; `text` is left null.
  virtual void attachString(BaseString<unsigned short> &text);

 private:
  BaseString<unsigned short> m_text;
};

}  // namespace quarn
