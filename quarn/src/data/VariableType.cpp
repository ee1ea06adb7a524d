// VariableType.cpp - the tables behind the property type names
#include <quarn/data/VariableType.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleFingerprintValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringFingerprintValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>

#include <array>

namespace quarn::util {

namespace {

// No value class holds bytes: this tag exists so that kinds 2 and 4 have one.
ClassTag const &byteTypeTag() {
  static ClassTagDecl const tag("ByteType");
  return tag;
}

// Date-times type as doubles. Interning the name gives the date-time class's
// own id whichever of the two is interned first.
ClassTag const &dateTimeTag() {
  static ClassTagDecl const tag("Marlix.value.DateTimeValue");
  return tag;
}

// Both tags are interned while the library loads, like every class's Tag.
[[maybe_unused]] ClassTag const &g_byteTypeAtLoad = byteTypeTag();
[[maybe_unused]] ClassTag const &g_dateTimeAtLoad = dateTimeTag();

struct CanonicalName {
  VariableType type;
  unsigned short name[24];
};

constexpr CanonicalName canonical(VariableType type, char const *name) {
  CanonicalName c{type, {}};
  for (unsigned int i = 0; name[i]; ++i) c.name[i] = static_cast<unsigned char>(name[i]);
  return c;
}

constexpr std::array kCanonicalNames{
    canonical(VariableType::Bool, "BoolType"),
    canonical(VariableType::Byte, "ByteType"),
    canonical(VariableType::Long, "LongType"),
    canonical(VariableType::Int64, "Int64Type"),
    canonical(VariableType::Double, "DoubleType"),
    canonical(VariableType::String, "StringType"),
    canonical(VariableType::Any, "AnyType"),
    canonical(VariableType::BitFingerprint, "BitFingerprintType"),
    canonical(VariableType::LongFingerprint, "LongFingerprintType"),
    canonical(VariableType::DoubleFingerprint, "DoubleFingerprintType"),
    canonical(VariableType::StringFingerprint, "StringFingerprintType"),
};

struct TypeName {
  char const *name;
  VariableType type;
};

// Tried in order; the first match wins ("UserNameType" appears twice).
constexpr TypeName kTypeNames[] = {
    {"EmptyType", VariableType::Long},
    {"BoolType", VariableType::Bool},
    {"ByteType", VariableType::Byte},
    {"LongType", VariableType::Long},
    {"Int64Type", VariableType::Int64},
    {"DoubleType", VariableType::Double},
    {"StringType", VariableType::String},
    {"URLStringType", VariableType::String},
    {"ExpressionStringType", VariableType::String},
    {"ComponentStringType", VariableType::String},
    {"PasswordStringType", VariableType::String},
    {"DSNStringType", VariableType::String},
    {"SQLQueryStringType", VariableType::String},
    {"UserNameType", VariableType::String},
    {"DateStringType", VariableType::String},
    {"TextStringType", VariableType::String},
    {"HexStringType", VariableType::String},
    {"HexType", VariableType::String},
    {"BitFingerprintType", VariableType::BitFingerprint},
    {"LongFingerprintType", VariableType::LongFingerprint},
    {"DoubleFingerprintType", VariableType::DoubleFingerprint},
    {"StringFingerprintType", VariableType::StringFingerprint},
    {"AnyType", VariableType::Any},
    {"UnknownType", VariableType::Long},
    {"FingerprintType", VariableType::LongFingerprint},
    {"URLType", VariableType::String},
    {"PasswordType", VariableType::String},
    {"DSNType", VariableType::String},
    {"SQLQueryType", VariableType::String},
    {"UserNameType", VariableType::String},
    {"ExpressionType", VariableType::String},
    {"ComponentType", VariableType::String},
    {"TextType", VariableType::String},
    {"DateType", VariableType::String},
    {"ByteArrayType", VariableType::Byte},
    {"BoolArrayType", VariableType::Bool},
    {"LongArrayType", VariableType::Long},
    {"DoubleArrayType", VariableType::Double},
    {"StringArrayType", VariableType::String},
    {"VariableArrayType", VariableType::Any},
};

constexpr unsigned int foldAZ(unsigned int unit) { return unit >= 'A' && unit <= 'Z' ? unit + ('a' - 'A') : unit; }

bool equalsIgnoringAZ(unsigned short const *text, char const *ascii) {
  for (;; ++text, ++ascii) {
    unsigned int u = *text, a = static_cast<unsigned char>(*ascii);
    if (foldAZ(u) != foldAZ(a)) return false;
    if (u == 0) return true;
  }
}

}  // namespace

unsigned short const *getVariableTypeName(VariableType type) {
  for (CanonicalName const &c : kCanonicalNames)
    if (c.type == type) return c.name;
  throw Exception("Illegal variable type");
}

ClassTag classTagFromVariableType(VariableType type) {
  switch (type) {
    case VariableType::Bool:
      return BooleanValue::Tag;
    case VariableType::Byte:
    case VariableType::Int64:
      return byteTypeTag();
    case VariableType::Long:
      return IntegerValue::Tag;
    case VariableType::Double:
      return DoubleValue::Tag;
    case VariableType::String:
      return StringValue::Tag;
    case VariableType::Any:
    case VariableType::Unnamed:
      return FlexValue::Tag;
    case VariableType::BitFingerprint:
      return BitFingerprintValue::Tag;
    case VariableType::LongFingerprint:
      return IntegerFingerprintValue::Tag;
    case VariableType::DoubleFingerprint:
      return DoubleFingerprintValue::Tag;
    case VariableType::StringFingerprint:
      return StringFingerprintValue::Tag;
  }
  throw Exception("Unknown Type");
}

VariableType classTagToVariableType(ClassTag const &tag) {
  int const id = tag.getId();
  if (id == BooleanValue::Tag.getId()) return VariableType::Bool;
  if (id == IntegerValue::Tag.getId()) return VariableType::Long;
  if (id == DoubleValue::Tag.getId()) return VariableType::Double;
  if (id == StringValue::Tag.getId()) return VariableType::String;
  if (id == BitFingerprintValue::Tag.getId() || id == BitsetValue::Tag.getId()) return VariableType::BitFingerprint;
  if (id == IntegerFingerprintValue::Tag.getId()) return VariableType::LongFingerprint;
  if (id == DoubleFingerprintValue::Tag.getId()) return VariableType::DoubleFingerprint;
  if (id == StringFingerprintValue::Tag.getId()) return VariableType::StringFingerprint;
  if (id == FlexValue::Tag.getId()) return VariableType::Any;
  if (id == dateTimeTag().getId()) return VariableType::Double;
  if (id == byteTypeTag().getId()) return VariableType::Byte;
  throw Exception("Illegal class tag");
}

VariableType getVariableType(unsigned short const *name) {
  if (!name) throw Exception("getVariableType:  NULL type string");
  for (TypeName const &t : kTypeNames)
    if (equalsIgnoringAZ(name, t.name)) return t.type;
  throw Exception("getVariableType:  Unknown type %ls", name);
}

}  // namespace quarn::util
