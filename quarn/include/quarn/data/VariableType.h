// VariableType.h - property type names, their storage kinds and value classes
//
// Component parameters and record properties are declared with a type name
// ("DoubleType"). VariableType is the storage kind behind such a name, and the
// functions below translate between names, kinds and the class tags of the
// value classes that hold them:
//
//   kind                    name                     class tag
//    1 Bool                 "BoolType"               BooleanValue
//    2 Byte                 "ByteType"               the tag named "ByteType"
//    3 Long                 "LongType"               IntegerValue
//    4 Int64                "Int64Type"              the tag named "ByteType" (as 2, deliberately)
//    5 Double               "DoubleType"             DoubleValue
//    6 String               "StringType"             StringValue
//    8 Any                  "AnyType"                FlexValue
//   16 BitFingerprint       "BitFingerprintType"     BitFingerprintValue
//   17 LongFingerprint      "LongFingerprintType"    IntegerFingerprintValue
//   18 DoubleFingerprint    "DoubleFingerprintType"  DoubleFingerprintValue
//   19 StringFingerprint    "StringFingerprintType"  StringFingerprintValue
//   20 Unnamed              (no name)                FlexValue
//
// Kinds 7 and 9-15 mean nothing. No value class holds bytes: the library
// interns a class tag named "ByteType" while it loads, only so that kinds 2 and
// 4 have a tag. Mapping a tag back (classTagToVariableType) is therefore not
// the inverse of the table: 4 comes back as 2, BitsetValue joins 16, and a
// DateTimeValue ("Marlix.value.DateTimeValue") types as a double (5).
//
// getVariableType reads the many type names that parameters are declared
// with, matching ignoring the case of A-Z only and trying them in this order:
//
//   "EmptyType" 3, "BoolType" 1, "ByteType" 2, "LongType" 3, "Int64Type" 4,
//   "DoubleType" 5, "StringType" "URLStringType" "ExpressionStringType"
//   "ComponentStringType" "PasswordStringType" "DSNStringType"
//   "SQLQueryStringType" "UserNameType" "DateStringType" "TextStringType"
//   "HexStringType" "HexType" 6, "BitFingerprintType" 16,
//   "LongFingerprintType" 17, "DoubleFingerprintType" 18,
//   "StringFingerprintType" 19, "AnyType" 8, "UnknownType" 3,
//   "FingerprintType" 17, "URLType" "PasswordType" "DSNType" "SQLQueryType"
//   "UserNameType" "ExpressionType" "ComponentType" "TextType" "DateType" 6,
//   "ByteArrayType" 2, "BoolArrayType" 1, "LongArrayType" 3,
//   "DoubleArrayType" 5, "StringArrayType" 6, "VariableArrayType" 8.
//
// Array names give the element kind, not an array, and "EmptyType" and
// "UnknownType" give 3: stored parameter declarations rely on both.
//
// Every function either succeeds or throws Exception with a fixed message
// (given at each function); nothing is changed by a failure.
#pragma once

#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>

namespace quarn {

/// The storage kind of a property; the numbers are stored and must not change.
enum class VariableType : int {
  Bool = 1,
  Byte = 2,
  Long = 3,
  Int64 = 4,
  Double = 5,
  String = 6,
  Any = 8,
  BitFingerprint = 16,
  LongFingerprint = 17,
  DoubleFingerprint = 18,
  StringFingerprint = 19,
  /// Has a class tag (FlexValue) but no type name.
  Unnamed = 20,
};

namespace util {

/// The canonical type name of `type` ("DoubleType"), a constant UTF-16 text
/// that lives as long as the library. Any kind without a name, 20 included,
/// throws "Illegal variable type".
QUARN_API unsigned short const *getVariableTypeName(VariableType type);

/// The class tag of the value class that holds `type` (see the table); any
/// other kind throws "Unknown Type".
QUARN_API ClassTag classTagFromVariableType(VariableType type);

/// The kind of a value class, tested in this order: BooleanValue 1,
/// IntegerValue 3, DoubleValue 5, StringValue 6, BitFingerprintValue or
/// BitsetValue 16, IntegerFingerprintValue 17, DoubleFingerprintValue 18,
/// StringFingerprintValue 19, FlexValue 8, DateTimeValue 5, the tag named
/// "ByteType" 2. Any other tag (the empty one too) throws "Illegal class tag".
QUARN_API VariableType classTagToVariableType(ClassTag const &tag);

/// The kind named by a type name (the list in the file comment). A null name throws
/// "getVariableType:  NULL type string"; a name not in the table throws
/// "getVariableType:  Unknown type %ls" with the name.
QUARN_API VariableType getVariableType(unsigned short const *name);

}  // namespace util
}  // namespace quarn
