// FlexValue.h - a variant value that keeps the native type it was last given
//
// A FlexValue holds nothing, a signed or unsigned 32-bit integer, a double, a
// float, a bool, a byte, a wide (UTF-16) or a narrow (UTF-8 bytes) string, and
// remembers which (its StorageType code, 1 to 9), so that its XML and byte
// forms keep that type. It owns a held string (on the heap, one per value);
// every assignment replaces the whole content. (`long` and `unsigned long`
// are stored in 32 bits: their low 32 bits are kept.)
//
// Coercions follow the held kind: numbers convert as C does (a double or
// float outside the int range, or NaN, gives -2147483648 as an integer), an
// unsigned integer reads back its 32 bits as an int and its unsigned value as
// a double, texts are read with quarnCore's readers (the narrow overloads for
// code 9, so a text that is no number throws their Exception), and nothing
// (code 1) reads as 0, 0.0, false and the empty text - while findInteger and
// its kin answer false for it. As an int, double or bool array a text is read
// as a whole list; every other kind gives one element.
//
// Order: against another class by class name; else by code first (null <
// signed < unsigned < double < float < bool < byte < wide < narrow); within
// one numeric code only "same" (0) or "different" (1, also for NaN); texts
// order unit by unit (wide: unsigned units; narrow: signed bytes), a null text
// first. Hash: the integer's 32 bits; the 31-polynomial over a double's 8 or a
// float's 4 little-endian bytes; 1 or 0 for a bool or byte (a byte hashes to 0
// or 1 only, on purpose); the 31-polynomial over the units of a wide text or
// the sign-extended bytes of a narrow one.
//
// XML text: getString's text, with & " ' > < escaped for the two texts, and
// the type "xsd:string" (nothing), "xsd:integer", "xsd:unsignedInt",
// "xsd:double", "xsd:float", "xsd:boolean", "xsd:byte", "b:wstring" or
// "b:cstring"; read back by the type (exact, case-sensitive: "xsd:boolean" is
// true only for the text "true"; "xsd:unsignedInt" takes a signed integer's
// bits, or a decimal above 2147483647 up to 4294967295; any other type gives a
// wide text).
//
// Payload: the code as a stream int, then null: nothing (04); signed and
// unsigned: a stream int (2 -> 08 08, 4294967295u -> 0C FC); double: a stream
// double (1.0 -> 10 01); float: its 4 raw little-endian bytes (1.5f ->
// 14 00 00 C0 3F); bool: one byte (18 01); byte: one byte (1C C8); wide: a
// stream string ("\u00E9" in version 2 -> 20 08 C3 A9); narrow: n = bytes + 1
// (0 for a null text) as a stream int and the bytes, in every stream version
// ("ab" -> 24 0C 61 62). An unknown code throws "FlexValue deserializing
// unknown type %d"; a failed read leaves the value as it was.
//
// Pool hooks are the reverse of the scalars': taking a FlexValue from its pool
// does nothing, returning it clears it, so a pooled value holds no string.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/BaseString.h>

#include <cstdint>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API FlexValue : public ValueGlue<FlexValue, Value> {
  QUARN_VALUE_CLASS(FlexValue, "Marlix.value.FlexValue", PooledClassImp<FlexValue, -1>)

 public:
  /// The kind held; the numbers are part of the byte form.
  enum StorageType : std::int32_t {
    NullType = 1,
    IntType = 2,
    UnsignedIntType = 3,
    DoubleType = 4,
    FloatType = 5,
    BoolType = 6,
    ByteType = 7,
    WStringType = 8,
    CStringType = 9,
  };

  /// Nothing (code 1).
  FlexValue() = default;
  FlexValue(short value) : FlexValue(static_cast<int>(value)) {}
  FlexValue(int value) { *this = value; }
  FlexValue(long value) : FlexValue(static_cast<int>(value)) {}
  FlexValue(unsigned short value) : FlexValue(static_cast<unsigned int>(value)) {}
  FlexValue(unsigned int value) { *this = value; }
  FlexValue(unsigned long value) : FlexValue(static_cast<unsigned int>(value)) {}
  FlexValue(double value) { *this = value; }
  FlexValue(float value) { *this = value; }
  FlexValue(bool value) { *this = value; }
  FlexValue(unsigned char value) { *this = value; }
  FlexValue(unsigned short const *text) { *this = text; }
  FlexValue(BaseString<unsigned short> const &text) { *this = text; }
  FlexValue(char const *text) { *this = text; }
  FlexValue(BaseString<char> const &text) { *this = text; }
  /// Other pointers (a char16_t literal, say) would otherwise quietly become a bool.
  template <class T>
  FlexValue(T const *) = delete;
  FlexValue(FlexValue const &other) : Glue(other) { *this = other; }
  /// Takes over `other`'s content (and string); `other` is left null.
  FlexValue(FlexValue &&other) noexcept : Glue(other) { *this = static_cast<FlexValue &&>(other); }
  /// `value` converted through the converter registry (Value::assignTo).
  explicit FlexValue(Value const &value) { value.assignTo(*this); }
  ~FlexValue() override;

  FlexValue &operator=(short value) { return *this = static_cast<int>(value); }
  FlexValue &operator=(int value);
  FlexValue &operator=(long value) { return *this = static_cast<int>(value); }
  FlexValue &operator=(unsigned short value) { return *this = static_cast<unsigned int>(value); }
  FlexValue &operator=(unsigned int value);
  FlexValue &operator=(unsigned long value) { return *this = static_cast<unsigned int>(value); }
  FlexValue &operator=(double value);
  FlexValue &operator=(float value);
  FlexValue &operator=(bool value);
  FlexValue &operator=(unsigned char value);
  /// A copy of the text (null stays null); a held wide string object is reused.
  FlexValue &operator=(unsigned short const *text);
  FlexValue &operator=(BaseString<unsigned short> const &text);
  /// A copy of the UTF-8 bytes (null stays null).
  FlexValue &operator=(char const *text);
  FlexValue &operator=(BaseString<char> const &text);
  template <class T>
  FlexValue &operator=(T const *) = delete;
  FlexValue &operator=(FlexValue const &other);
  FlexValue &operator=(FlexValue &&other) noexcept;
  /// `value` converted through the converter registry; a failed conversion
  /// leaves this value as it was.
  FlexValue &operator=(Value const &value);

  /// The code of the kind held.
  StorageType getStorageType() const noexcept { return m_type; }
  /// Whether nothing is held (code 1).
  bool isNull() const noexcept { return m_type == NullType; }

  // ---- Value's slots

  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;
  int getInteger() const override;
  bool getBoolean() const override;
  double getDouble() const override;
  void getString(BaseString<unsigned short> &out) const override;
  /// One element (getString).
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  /// Texts read as a list (util::stringToDoubleArray); other kinds one element.
  void getArray(Array<double> &out) const override;
  /// Texts read as a list (util::stringToIntegerArray); other kinds one element.
  void getArray(Array<int> &out) const override;
  /// Texts read as a list (util::stringToBooleanArray); other kinds one element.
  void getArray(Array<bool> &out) const override;
  /// "Marlix.value.FlexArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  /// False when nothing is held (output untouched); else the getter, true.
  bool findDouble(double &out) const override;
  bool findInteger(int &out) const override;
  bool findBoolean(bool &out) const override;
  bool findString(BaseString<unsigned short> &out) const override;
  int compare(Value const &other) const override;
  /// getString's text (texts escaped), `type` the XML type of the kind; true.
  bool getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &type) const override;
  /// Reads `text` as the kind that `type` names (see the file comment).
  void setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &type) override;
  /// Frees a held string; code 1.
  void clear() override;

  // ---- new slots, in this order

  /// The held narrow text; "Cannot getString for a non-cstring" unless code 9.
  virtual char const *getString() const;
  /// The 32 bits of getInteger(), unsigned.
  virtual unsigned int getUnsignedInteger() const;
  /// "nullType", "intType", "doubleType", "boolType", "byteType" or "stringType".
  virtual void getNativeType(BaseString<unsigned short> &out) const;
  /// The held wide text; "Cannot getString for a non-wstring" unless code 8.
  virtual unsigned short const *getWString() const;
  /// A new scalar holding the content: NullValue, IntegerValue (signed,
  /// unsigned, byte), DoubleValue (double, float), BooleanValue or StringValue.
  virtual void getValue(ObjPtr<Value> &out) const;

  // ---- the pooled side

  /// Nothing: a pooled value was cleared when it was returned.
  void onActivate() override;
  /// Clears, freeing a held string.
  void onDeactivate() override;

 private:
  union Cell {
    std::uint64_t raw;
    int i;
    unsigned int u;
    double d;
    float f;
    bool b;
    unsigned char byte;
    BaseString<unsigned short> *wide;
    BaseString<char> *narrow;
  };

  /// Clears, then holds `cell` as `type` (never a string kind).
  void store(StorageType type, Cell cell) noexcept;
  /// Holds `make()`'s string as `type`, reusing a held string object of that kind.
  template <class S, class Make>
  void storeString(StorageType type, Make const &make);

  StorageType m_type = NullType;
  Cell m_cell{};
};

}  // namespace quarn
