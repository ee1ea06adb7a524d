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

std::string narrow(unsigned short const *text) {
  std::string s;
  while (*text) s.push_back(static_cast<char>(*text++));
  return s;
}

TEST(VariableTypeTest, EveryKindHasItsNameAndTag) {
  struct Row {
    int kind;
    char const *name;  // null: no name
    char const *tag;
  };
  Row const rows[] = {
      {1, "BoolType", "Marlix.value.BooleanValue"},
      {2, "ByteType", "ByteType"},
      {3, "LongType", "Marlix.value.IntegerValue"},
      {4, "Int64Type", "ByteType"},
      {5, "DoubleType", "Marlix.value.DoubleValue"},
      {6, "StringType", "Marlix.value.StringValue"},
      {8, "AnyType", "Marlix.value.FlexValue"},
      {16, "BitFingerprintType", "Marlix.value.BitFingerprintValue"},
      {17, "LongFingerprintType", "Marlix.value.IntegerFingerprintValue"},
      {18, "DoubleFingerprintType", "Marlix.value.DoubleFingerprintValue"},
      {19, "StringFingerprintType", "Marlix.value.StringFingerprintValue"},
      {20, nullptr, "Marlix.value.FlexValue"},
  };
  for (Row const &r : rows) {
    SCOPED_TRACE(r.kind);
    if (r.name) {
      EXPECT_EQ(narrow(getVariableTypeName(kind(r.kind))), r.name);
      EXPECT_EQ(getVariableType(getVariableTypeName(kind(r.kind))), kind(r.kind));
    } else {
      EXPECT_QUARN_THROW(getVariableTypeName(kind(r.kind)), "Illegal variable type");
    }
    EXPECT_EQ(classTagFromVariableType(kind(r.kind)), ClassTag(r.tag));
    EXPECT_STREQ(classTagFromVariableType(kind(r.kind)).getName(), r.tag);
  }
}

TEST(VariableTypeTest, KindsWithoutMeaningThrow) {
  for (int k : {0, 7, 9, 10, 11, 12, 13, 14, 15, 21, -1, 1000}) {
    SCOPED_TRACE(k);
    EXPECT_QUARN_THROW(getVariableTypeName(kind(k)), "Illegal variable type");
    EXPECT_QUARN_THROW(classTagFromVariableType(kind(k)), "Unknown Type");
  }
}

TEST(VariableTypeTest, TagsMapBackToKinds) {
  struct Row {
    char const *tag;
    int kind;
  };
  Row const rows[] = {
      {"Marlix.value.BooleanValue", 1},
      {"Marlix.value.IntegerValue", 3},
      {"Marlix.value.DoubleValue", 5},
      {"Marlix.value.StringValue", 6},
      {"Marlix.value.BitFingerprintValue", 16},
      {"Marlix.value.BitsetValue", 16},
      {"Marlix.value.IntegerFingerprintValue", 17},
      {"Marlix.value.DoubleFingerprintValue", 18},
      {"Marlix.value.StringFingerprintValue", 19},
      {"Marlix.value.FlexValue", 8},
      {"Marlix.value.DateTimeValue", 5},  // a date-time types as a double
      {"MARLIX.VALUE.DATETIMEVALUE", 5},
      {"ByteType", 2},
  };
  for (Row const &r : rows) EXPECT_EQ(classTagToVariableType(ClassTag(r.tag)), kind(r.kind)) << r.tag;
  for (char const *tag : {"Marlix.value.IntegerArrayValue", "Marlix.value.BitsetValue2D", "Marlix.value.Value"})
    EXPECT_QUARN_THROW(classTagToVariableType(ClassTag(tag)), "Illegal class tag");
  EXPECT_QUARN_THROW(classTagToVariableType(ClassTag()), "Illegal class tag");
}

TEST(VariableTypeTest, ByteTypeTagIsInternedAtLoad) { EXPECT_TRUE(ClassTag::isInterned("ByteType")); }

TEST(VariableTypeTest, Int64ComesBackAsByte) {
  EXPECT_EQ(narrow(getVariableTypeName(VariableType::Int64)), "Int64Type");
  EXPECT_EQ(classTagToVariableType(classTagFromVariableType(VariableType::Int64)), VariableType::Byte);
}

TEST(VariableTypeTest, EveryTypeNameInAnyAsciiCase) {
  struct Row {
    char const *name;
    int kind;
  };
  // clang-format off
  Row const rows[] = {
      {"EmptyType", 3},           {"BoolType", 1},           {"ByteType", 2},
      {"LongType", 3},            {"Int64Type", 4},          {"DoubleType", 5},
      {"StringType", 6},          {"URLStringType", 6},      {"ExpressionStringType", 6},
      {"ComponentStringType", 6}, {"PasswordStringType", 6}, {"DSNStringType", 6},
      {"SQLQueryStringType", 6},  {"UserNameType", 6},       {"DateStringType", 6},
      {"TextStringType", 6},      {"HexStringType", 6},      {"HexType", 6},
      {"BitFingerprintType", 16}, {"LongFingerprintType", 17}, {"DoubleFingerprintType", 18},
      {"StringFingerprintType", 19}, {"AnyType", 8},         {"UnknownType", 3},
      {"FingerprintType", 17},    {"URLType", 6},            {"PasswordType", 6},
      {"DSNType", 6},             {"SQLQueryType", 6},       {"ExpressionType", 6},
      {"ComponentType", 6},       {"TextType", 6},           {"DateType", 6},
      {"ByteArrayType", 2},       {"BoolArrayType", 1},      {"LongArrayType", 3},
      {"DoubleArrayType", 5},     {"StringArrayType", 6},    {"VariableArrayType", 8},
  };
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
  struct Row {
    WString name;
    char const *message;
  };
  WString withAcute("Doubl");
  withAcute.append(static_cast<unsigned short>(0xE9)).appendAscii("Type");  // only A-Z fold
  WString dottedI("Str");
  dottedI.append(static_cast<unsigned short>(0x130)).appendAscii("ngType");  // lower-cases to i elsewhere
  Row const rows[] = {
      {WString(""), "getVariableType:  Unknown type "},
      {WString("DoubleType "), "getVariableType:  Unknown type DoubleType "},
      {WString("Double"), "getVariableType:  Unknown type Double"},
      {WString("IntegerType"), "getVariableType:  Unknown type IntegerType"},
      {withAcute, "getVariableType:  Unknown type Doubl\xC3\xA9Type"},
      {dottedI, "getVariableType:  Unknown type Str\xC4\xB0ngType"},
  };
  for (Row const &r : rows) EXPECT_QUARN_THROW(getVariableType(r.name.getBuffer()), r.message);
}

}  // namespace
}  // namespace quarn
