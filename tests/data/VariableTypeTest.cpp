// VariableTypeTest.cpp - type names, kinds and class tags in every direction
#include <gtest/gtest.h>
#include <quarn/data/VariableType.h>

#include <cctype>
#include <string>

#include "support/ExpectThrow.h"

namespace quarn {
namespace {

using util::classTagFromVariableType;
using util::classTagToVariableType;
using util::getVariableType;
using util::getVariableTypeName;

VariableType kind(int value) { return static_cast<VariableType>(value); }
std::string narrow(unsigned short const *text) { return std::string(text, text + WString::lengthOf(text)); }
std::string valueClass(char const *name) { return std::string("Marlix.value.") + name; }

TEST(VariableTypeTest, EveryKindHasItsNameAndTag) {
  struct Row {
    int kind;
    char const *name, *valueClass;  // no name: none; no value class: the tag "ByteType"
  };
  // clang-format off
  Row const rows[] = {
      {1, "BoolType", "BooleanValue"}, {2, "ByteType", nullptr}, {3, "LongType", "IntegerValue"},
      {4, "Int64Type", nullptr}, {5, "DoubleType", "DoubleValue"}, {6, "StringType", "StringValue"},
      {8, "AnyType", "FlexValue"}, {16, "BitFingerprintType", "BitFingerprintValue"},
      {17, "LongFingerprintType", "IntegerFingerprintValue"}, {18, "DoubleFingerprintType", "DoubleFingerprintValue"},
      {19, "StringFingerprintType", "StringFingerprintValue"}, {20, nullptr, "FlexValue"}};
  // clang-format on
  for (Row const &r : rows) {
    SCOPED_TRACE(r.kind);
    if (r.name) {
      EXPECT_EQ(narrow(getVariableTypeName(kind(r.kind))), r.name);
      EXPECT_EQ(getVariableType(getVariableTypeName(kind(r.kind))), kind(r.kind));
    } else {
      EXPECT_QUARN_THROW(getVariableTypeName(kind(r.kind)), "Illegal variable type");
    }
    std::string const tag = r.valueClass ? valueClass(r.valueClass) : "ByteType";
    EXPECT_STREQ(classTagFromVariableType(kind(r.kind)).getName(), tag.c_str());
  }
  for (int k : {0, 7, 9, 10, 11, 12, 13, 14, 15, 21, -1}) {
    EXPECT_QUARN_THROW(getVariableTypeName(kind(k)), "Illegal variable type");
    EXPECT_QUARN_THROW(classTagFromVariableType(kind(k)), "Unknown Type");
  }
}

TEST(VariableTypeTest, TagsMapBackToKinds) {
  struct Row {
    char const *tag;
    int kind;
  };
  // clang-format off
  Row const rows[] = {
      {"BooleanValue", 1}, {"IntegerValue", 3}, {"DoubleValue", 5}, {"StringValue", 6},
      {"BitFingerprintValue", 16}, {"BitsetValue", 16}, {"IntegerFingerprintValue", 17},
      {"DoubleFingerprintValue", 18}, {"StringFingerprintValue", 19}, {"FlexValue", 8},
      {"DateTimeValue", 5}, {"DATETIMEVALUE", 5}};  // a date-time types as a double
  // clang-format on
  for (Row const &r : rows)
    EXPECT_EQ(classTagToVariableType(ClassTag(valueClass(r.tag).c_str())), kind(r.kind)) << r.tag;
  EXPECT_EQ(classTagToVariableType(ClassTag("ByteType")), VariableType::Byte);
  // Int64 keeps its own name but comes back from its tag as Byte.
  EXPECT_EQ(classTagToVariableType(classTagFromVariableType(VariableType::Int64)), VariableType::Byte);
  for (char const *tag : {"IntegerArrayValue", "BitsetValue2D", "Value"})
    EXPECT_QUARN_THROW(classTagToVariableType(ClassTag(valueClass(tag).c_str())), "Illegal class tag");
  EXPECT_QUARN_THROW(classTagToVariableType(ClassTag()), "Illegal class tag");
}

TEST(VariableTypeTest, EveryTypeNameInAnyAsciiCase) {
  struct Row {
    char const *name;
    int kind;
  };
  // clang-format off
  Row const rows[] = {
      {"EmptyType", 3}, {"BoolType", 1}, {"ByteType", 2}, {"LongType", 3}, {"Int64Type", 4}, {"DoubleType", 5},
      {"StringType", 6}, {"URLStringType", 6}, {"ExpressionStringType", 6}, {"ComponentStringType", 6},
      {"PasswordStringType", 6}, {"DSNStringType", 6}, {"SQLQueryStringType", 6}, {"UserNameType", 6},
      {"DateStringType", 6}, {"TextStringType", 6}, {"HexStringType", 6}, {"HexType", 6},
      {"BitFingerprintType", 16}, {"LongFingerprintType", 17}, {"DoubleFingerprintType", 18},
      {"StringFingerprintType", 19}, {"AnyType", 8}, {"UnknownType", 3}, {"FingerprintType", 17},
      {"URLType", 6}, {"PasswordType", 6}, {"DSNType", 6}, {"SQLQueryType", 6}, {"ExpressionType", 6},
      {"ComponentType", 6}, {"TextType", 6}, {"DateType", 6}, {"ByteArrayType", 2}, {"BoolArrayType", 1},
      {"LongArrayType", 3}, {"DoubleArrayType", 5}, {"StringArrayType", 6}, {"VariableArrayType", 8}};
  // clang-format on
  for (Row const &r : rows) {
    std::string lower = r.name, upper = r.name;
    for (char &c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (char &c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (std::string const &spelling : {std::string(r.name), lower, upper})
      EXPECT_EQ(getVariableType(WString(spelling.c_str()).getBuffer()), kind(r.kind)) << spelling;
  }
}

TEST(VariableTypeTest, UnknownAndNullNamesThrow) {
  EXPECT_QUARN_THROW(getVariableType(nullptr), "getVariableType:  NULL type string");
  WString acute("Doubl"), dottedI("Str");  // only A-Z fold: neither letter becomes ASCII
  acute.append(static_cast<unsigned short>(0xE9)).appendAscii("Type");
  dottedI.append(static_cast<unsigned short>(0x130)).appendAscii("ngType");
  struct Row {
    WString name;
    char const *message;
  } const rows[] = {
      {WString(""), "getVariableType:  Unknown type "},
      {WString("DoubleType "), "getVariableType:  Unknown type DoubleType "},
      {WString("IntegerType"), "getVariableType:  Unknown type IntegerType"},
      {acute, "getVariableType:  Unknown type Doubl\xC3\xA9Type"},
      {dottedI, "getVariableType:  Unknown type Str\xC4\xB0ngType"},
  };
  for (Row const &r : rows) EXPECT_QUARN_THROW(getVariableType(r.name.getBuffer()), r.message);
}

}  // namespace
}  // namespace quarn
