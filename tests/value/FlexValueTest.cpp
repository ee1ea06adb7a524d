// FlexValueTest.cpp - the variant value kind by kind: storage, coercion, order, hash, XML text and bytes
#include <gtest/gtest.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BooleanArrayValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringValue.h>

#include <climits>
#include <limits>
#include <type_traits>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueArrayContracts.h"

namespace quarn::test {
namespace {

using Code = FlexValue::StorageType;

// A char16_t literal must not quietly become a bool.
static_assert(!std::is_constructible_v<FlexValue, char16_t const *>);
static_assert(!std::is_convertible_v<IntegerValue const &, FlexValue>, "conversion from a value is explicit");
static_assert(std::is_nothrow_move_constructible_v<FlexValue>);

std::u16string xmlType(FlexValue const &v) {
  WString text, type;
  v.getXMLText(text, type);
  return str(type);
}

std::u16string nativeType(FlexValue const &v) {
  WString type;
  v.getNativeType(type);
  return str(type);
}

// clang-format off
struct Row { FlexValue value; Code code; int integer; double number; bool boolean; std::u16string text;
             unsigned int hash; std::u16string native, xml; char const *payload; /* stream version 2 */ };
// clang-format on

std::vector<Row> kindRows() {
  return {
      {FlexValue(), Code::NullType, 0, 0.0, false, u"", 0, u"nullType", u"xsd:string", "04"},
      {FlexValue(short(-1)), Code::IntType, -1, -1.0, true, u"-1", 0xFFFFFFFFu, u"intType", u"xsd:integer", "08 FC"},
      {FlexValue(40000), Code::IntType, 40000, 40000.0, true, u"40000", 40000, u"intType", u"xsd:integer",
       "08 03 40 9C 00 00"},
      {FlexValue(-129L), Code::IntType, -129, -129.0, true, u"-129", 0xFFFFFF7Fu, u"intType", u"xsd:integer",
       "08 02 7F FF"},
      {FlexValue(static_cast<unsigned short>(65535)), Code::UnsignedIntType, 65535, 65535.0, true, u"65535", 65535,
       u"intType", u"xsd:unsignedInt", "0C 03 FF FF 00 00"},
      {FlexValue(4294967295u), Code::UnsignedIntType, -1, 4294967295.0, true, u"4294967295", 0xFFFFFFFFu, u"intType",
       u"xsd:unsignedInt", "0C FC"},
      {FlexValue(0UL), Code::UnsignedIntType, 0, 0.0, false, u"0", 0, u"intType", u"xsd:unsignedInt", "0C 00"},
      {FlexValue(1.0), Code::DoubleType, 1, 1.0, true, u"1", 7503, u"doubleType", u"xsd:double", "10 01"},
      {FlexValue(-2.5), Code::DoubleType, -2, -2.5, true, u"-2.5", 316, u"doubleType", u"xsd:double",
       "10 02 00 00 00 00 00 00 04 C0"},
      {FlexValue(1.5f), Code::FloatType, 1, 1.5, true, u"1.5", 6015, u"doubleType", u"xsd:float", "14 00 00 C0 3F"},
      {FlexValue(true), Code::BoolType, 1, 1.0, true, u"true", 1, u"boolType", u"xsd:boolean", "18 01"},
      {FlexValue(false), Code::BoolType, 0, 0.0, false, u"false", 0, u"boolType", u"xsd:boolean", "18 00"},
      {FlexValue(static_cast<unsigned char>(200)), Code::ByteType, 200, 200.0, true, u"200", 1, u"byteType",
       u"xsd:byte", "1C C8"},
      {FlexValue(static_cast<unsigned char>(0)), Code::ByteType, 0, 0.0, false, u"0", 0, u"byteType", u"xsd:byte",
       "1C 00"},
      {FlexValue(u16(u"1")), Code::WStringType, 1, 1.0, true, u"1", '1', u"stringType", u"b:wstring", "20 08 31"},
      {FlexValue("0"), Code::CStringType, 0, 0.0, false, u"0", '0', u"stringType", u"b:cstring", "24 08 30"},
  };
}

TEST(FlexValueTest, EachKindStoresItsCodeCoercesHashesNamesItselfAndWritesAPayloadThatReadsBack) {
  for (Row const &r : kindRows()) {
    SCOPED_TRACE(r.payload);
    FlexValue const &v = r.value;
    EXPECT_EQ(v.getStorageType(), r.code);
    EXPECT_EQ(v.getInteger(), r.integer);
    EXPECT_EQ(v.getUnsignedInteger(), static_cast<unsigned int>(r.integer));
    EXPECT_EQ(v.getDouble(), r.number);
    EXPECT_EQ(v.getBoolean(), r.boolean);
    EXPECT_EQ(textOf(v), r.text);
    EXPECT_EQ(v.hash(), r.hash);
    EXPECT_EQ(nativeType(v), r.native);
    EXPECT_EQ(xmlType(v), r.xml);
    EXPECT_EQ(hexOf(serialise(v)), r.payload);
    readEach<FlexValue>(golden(r.payload), 2, [&](FlexValue const &read) {
      EXPECT_EQ(read.getStorageType(), r.code);
      EXPECT_EQ(read.compare(r.value), 0);
    });
  }
}

TEST(FlexValueTest, NarrowTextIsFramedAlikeInEveryVersionWhileWideTextFollowsTheVersion) {
  // clang-format off
  struct Case { FlexValue value; char const *version1; char const *version2; } const cases[] = {
      {FlexValue("ab"), "24 0C 61 62", "24 0C 61 62"}, {FlexValue(""), "24 04", "24 04"},
      {FlexValue(static_cast<char const *>(nullptr)), "24 00", "24 00"},
      {FlexValue("\xC3\xA9"), "24 0C C3 A9", "24 0C C3 A9"}, {FlexValue(u16(u"\u00E9")), "20 08 E9 00", "20 08 C3 A9"},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(hexOf(serialise(c.value, 1)), c.version1);
    EXPECT_EQ(hexOf(serialise(c.value, 2)), c.version2);  // both read back: ValueContractTest
  }
}

TEST(FlexValueTest, UnknownCodesAndBadNarrowLengthsFailClearlyAndKeepTheValue) {
  // clang-format off
  struct Case { char const *bytes; char const *message; } const cases[] = {
      {"00", "FlexValue deserializing unknown type 0"}, {"28", "FlexValue deserializing unknown type 10"},
      {"FC", "FlexValue deserializing unknown type -1"}, {"01 7F", "FlexValue deserializing unknown type 127"},
      {"24 FC", "Invalid string length prefix -1"},
      {"24 03 FF FF FF 7F 61", "EOF reading byte 2 in string of length 2147483646"},
      {"14 00 00 C0", "EOF reading float"},
  };
  // clang-format on
  for (auto const &c : cases) {
    FlexValue v(7);
    ChunkedInputStream in(golden(c.bytes), 2);
    EXPECT_QUARN_THROW(v.deserialize(in), c.message);
    EXPECT_EQ(v.getStorageType(), Code::IntType);
    EXPECT_EQ(v.getInteger(), 7);
  }
}

TEST(FlexValueTest, CoercionsAtTheEdgesAndRawTextAccess) {
  // numbers outside the int range read as INT_MIN and a long keeps its low bits
  EXPECT_EQ(FlexValue(1e10).getInteger(), INT_MIN);
  EXPECT_EQ(FlexValue(std::numeric_limits<double>::quiet_NaN()).getInteger(), INT_MIN);
  EXPECT_EQ(FlexValue(-3e9f).getInteger(), INT_MIN);
  EXPECT_EQ(FlexValue(-2.9).getInteger(), -2);
  EXPECT_TRUE(FlexValue(std::numeric_limits<float>::quiet_NaN()).getBoolean());
  EXPECT_EQ(FlexValue(0x100000005L).getInteger(), 5);
  EXPECT_EQ(textOf(FlexValue(0.1f)), u"0.10000000149011612");
  // texts are read by quarnCore, narrow text as UTF-8
  FlexValue utf8Text("\xC3\xA9");
  EXPECT_EQ(textOf(utf8Text), u"\u00E9");
  EXPECT_EQ(utf8Text.hash(), static_cast<unsigned int>(-61 * 31 - 87));  // signed bytes
  EXPECT_QUARN_THROW(FlexValue("abc").getInteger(), "Cannot convert 'abc' to an integer");
  EXPECT_QUARN_THROW(FlexValue(u16(u"abc")).getDouble(), "Cannot convert 'abc' to a double");
  EXPECT_EQ(FlexValue(" 2.5 ").getDouble(), 2.5);
  // raw text access answers only for its own kind
  FlexValue wide(u16(u"w")), narrow("n"), number(5);
  EXPECT_EQ(std::u16string(reinterpret_cast<char16_t const *>(wide.getWString())), u"w");
  EXPECT_STREQ(narrow.getString(), "n");
  EXPECT_QUARN_THROW(number.getWString(), "Cannot getString for a non-wstring");
  EXPECT_QUARN_THROW(narrow.getWString(), "Cannot getString for a non-wstring");
  EXPECT_QUARN_THROW(number.getString(), "Cannot getString for a non-cstring");
  EXPECT_QUARN_THROW(wide.getString(), "Cannot getString for a non-cstring");
  EXPECT_EQ(FlexValue(BaseString<char>()).getString(), nullptr);
}

TEST(FlexValueTest, AssignmentReplacesTheKindAndReusesAHeldWideString) {
  FlexValue v(u16(u"a fairly long text"));
  unsigned short const *buffer = v.getWString();
  v = u16(u"short");
  EXPECT_EQ(v.getWString(), buffer);
  v = v.getWString() + 1;  // text taken from the value itself
  EXPECT_EQ(textOf(v), u"hort");
  v = "narrow";
  v = v.getString() + 2;
  EXPECT_EQ(textOf(v), u"rrow");
  v = 5;
  EXPECT_EQ(v.getStorageType(), Code::IntType);
  EXPECT_QUARN_THROW(v.getString(), "Cannot getString for a non-cstring");

  FlexValue copy(FlexValue(u16(u"deep")));
  FlexValue other(copy);
  EXPECT_NE(other.getWString(), copy.getWString());
  FlexValue moved(std::move(other));
  EXPECT_TRUE(other.isNull());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(textOf(moved), u"deep");
}

TEST(FlexValueTest, AValueOfAnotherClassIsStoredThroughItsConverterOrNotAtAll) {
  EXPECT_EQ(FlexValue(IntegerValue(3)).getStorageType(), Code::IntType);
  FlexValue v(7);
  v = StringValue("x");
  EXPECT_EQ(v.getStorageType(), Code::WStringType);
  v = 7;
  EXPECT_QUARN_THROW(v = BitsetValue(), "Could not convert from Marlix.value.BitsetValue to Marlix.value.FlexValue");
  EXPECT_EQ(v.getInteger(), 7);
}

template <class T>
std::vector<T> listOf(FlexValue const &v) {
  Array<T> a;
  v.getArray(a);
  return std::vector<T>(a.begin(), a.end());
}

TEST(FlexValueTest, TextsReadAsListsIntoNumberArraysWhileOtherKindsGiveOneElement) {
  FlexValue const wide(u16(u"1, 2 3"));
  EXPECT_EQ(listOf<int>(wide), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(listOf<double>(wide), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(listOf<bool>(FlexValue(u16(u"true, no"))), (std::vector<bool>{true, false}));
  std::vector<WString> texts = listOf<WString>(wide);
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(str(texts[0]), u"1, 2 3");
  EXPECT_EQ(listOf<int>(FlexValue("4 5")), (std::vector<int>{4, 5}));
  EXPECT_EQ(listOf<int>(FlexValue(7.5)), (std::vector<int>{7}));
  EXPECT_EQ(listOf<double>(FlexValue()), (std::vector<double>{0.0}));
}

TEST(FlexValueTest, GetValueMakesTheMatchingScalarAndNothingHeldIsUndefinedToTheFinders) {
  // clang-format off
  struct Case { FlexValue value; char const *className; std::u16string text; } const cases[] = {
      {FlexValue(), NullValue::className, u""}, {FlexValue(-5), IntegerValue::className, u"-5"},
      {FlexValue(4294967295u), IntegerValue::className, u"-1"},
      {FlexValue(static_cast<unsigned char>(200)), IntegerValue::className, u"200"},
      {FlexValue(0.5), DoubleValue::className, u"0.5"}, {FlexValue(1.5f), DoubleValue::className, u"1.5"},
      {FlexValue(true), BooleanValue::className, u"true"}, {FlexValue(u16(u"w")), StringValue::className, u"w"},
      {FlexValue("\xC3\xA9"), StringValue::className, u"\u00E9"},
  };
  // clang-format on
  for (auto const &c : cases) {
    ObjPtr<Value> made;
    c.value.getValue(made);
    ASSERT_TRUE(made);
    EXPECT_STREQ(made->getClassTag().getName(), c.className);
    EXPECT_EQ(textOf(*made), c.text);
  }
  // nothing held is undefined to the finders
  FlexValue null;
  int i = 9;
  double d = 9;
  bool b = true;
  WString s = u16(u"old");
  EXPECT_FALSE(null.findInteger(i) || null.findDouble(d) || null.findBoolean(b) || null.findString(s));
  EXPECT_EQ(i, 9);
  EXPECT_EQ(str(s), u"old");
  EXPECT_TRUE(FlexValue(0).findInteger(i));
  EXPECT_EQ(i, 0);
}

TEST(FlexValueTest, ComparesByCodeThenNumbersOnlyAsSameOrDifferentAndTextsInOrder) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  // clang-format off
  struct Case { FlexValue a, b; int expected; } const cases[] = {
      {FlexValue(), FlexValue(), 0}, {FlexValue(), FlexValue(0), -1}, {FlexValue(0), FlexValue(), 1},
      {FlexValue(3), FlexValue(5), 1}, {FlexValue(5), FlexValue(3), 1}, {FlexValue(3), FlexValue(3), 0},
      {FlexValue(9), FlexValue(0.5), -1}, {FlexValue(0.5), FlexValue(9), 1}, {FlexValue(7u), FlexValue(7u), 0},
      {FlexValue(nan), FlexValue(nan), 1}, {FlexValue(1.5f), FlexValue(1.5f), 0}, {FlexValue(1.5f), FlexValue(1.5), 1},
      {FlexValue(false), FlexValue(true), 1},
      {FlexValue(static_cast<unsigned char>(1)), FlexValue(static_cast<unsigned char>(2)), 1},
      {FlexValue(u16(u"a")), FlexValue(u16(u"b")), -1}, {FlexValue(u16(u"\uFFFF")), FlexValue(u16(u"a")), 0xFFFF - 'a'},
      {FlexValue(static_cast<unsigned short const *>(nullptr)), FlexValue(u16(u"")), -1},
      {FlexValue("\xFF"), FlexValue("a"), -1 - 'a'}, {FlexValue(BaseString<char>()), FlexValue(""), -1},
      {FlexValue(u16(u"z")), FlexValue("a"), -1},
  };
  // clang-format on
  for (auto const &c : cases) EXPECT_EQ(c.a.compare(c.b), c.expected) << hexOf(serialise(c.a));
  // Against another class: that class's name against "Marlix.value.FlexValue".
  EXPECT_EQ(FlexValue(1).compare(IntegerValue(1)), 'I' - 'F');
  EXPECT_EQ(IntegerValue(1).compare(FlexValue(1)), 'F' - 'I');
}

TEST(FlexValueTest, XmlTextEscapesTextsAndIsReadByItsExactType) {
  WString text, type;
  EXPECT_TRUE(FlexValue(u16(u"a<b&c")).getXMLText(text, type));
  EXPECT_EQ(str(text), u"a&lt;b&amp;c");
  EXPECT_TRUE(FlexValue("q\"'>").getXMLText(text, type));
  EXPECT_EQ(str(text), u"q&quot;&apos;&gt;");
  EXPECT_TRUE(FlexValue().getXMLText(text, type));
  EXPECT_EQ(str(text), u"");
  // clang-format off
  struct Case { std::u16string text; std::u16string type; Code code; std::u16string read; } const cases[] = {
      {u"42", u"xsd:integer", Code::IntType, u"42"}, {u"-1", u"xsd:unsignedInt", Code::UnsignedIntType, u"4294967295"},
      {u" 4294967295 ", u"xsd:unsignedInt", Code::UnsignedIntType, u"4294967295"},
      {u"2.5", u"xsd:double", Code::DoubleType, u"2.5"},
      {u"0.1", u"xsd:float", Code::FloatType, u"0.10000000149011612"},
      {u"true", u"xsd:boolean", Code::BoolType, u"true"}, {u"TRUE", u"xsd:boolean", Code::BoolType, u"false"},
      {u"1", u"xsd:boolean", Code::BoolType, u"false"}, {u"300", u"xsd:byte", Code::ByteType, u"44"},
      {u"\u00E9", u"b:cstring", Code::CStringType, u"\u00E9"}, {u"a&lt;", u"xsd:string", Code::WStringType, u"a&lt;"},
      {u"x", u"b:wstring", Code::WStringType, u"x"}, {u"x", u"", Code::WStringType, u"x"},
      {u"7", u"XSD:INTEGER", Code::WStringType, u"7"},
  };
  // clang-format on
  for (auto const &c : cases) {
    FlexValue v(1.5);
    v.setFromXMLText(u16(c.text), u16(c.type));
    EXPECT_EQ(v.getStorageType(), c.code) << utf8(u16(c.type));
    EXPECT_EQ(textOf(v), c.read);
  }
  FlexValue v(3);
  EXPECT_QUARN_THROW(v.setFromXMLText(u16(u"abc"), u16(u"xsd:integer")), "Cannot convert 'abc' to an integer");
  EXPECT_QUARN_THROW(v.setFromXMLText(u16(u"4294967296"), u16(u"xsd:unsignedInt")),
                     "Integer out of range: '4294967296'");
  EXPECT_EQ(v.getInteger(), 3);
  FlexValue narrow("\xC3\xA9");
  v.setFromXMLText(u16(u"\u00E9"), u16(u"b:cstring"));
  EXPECT_EQ(v.compare(narrow), 0);
}

TEST(FlexValueTest, ConvertsInKeepingTheNativeKindAndOutByTheGetterOfTheTargetsKind) {
  Make const before = make(FlexValue(u16(u"before"))), big = make(FlexValue(4294967295u));
  // clang-format off
  expectConversions({
      {make(IntegerValue(7)), before, make(FlexValue(7))}, {make(DoubleValue(0.5)), before, make(FlexValue(0.5))},
      {make(BooleanValue(true)), before, make(FlexValue(true))},
      {make(StringValue("x")), before, make(FlexValue(u16(u"x")))}, {make(NullValue()), before, make(FlexValue())},
      {make(MissingValue()), before, make(FlexValue())},
      {make(arrayOf<IntegerArrayValue>({7, 8})), before, make(FlexValue(7))},
      {make(arrayOf<IntegerFingerprintValue>({8})), before, make(FlexValue(8))},
      {make(arrayOf<DoubleArrayValue>({0.5})), before, make(FlexValue(0.5))},
      {make(arrayOf<BooleanArrayValue>({true})), before, make(FlexValue(true))},
      {make(arrayOf<ByteArrayValue>({200})), before, make(FlexValue(static_cast<unsigned char>(200)))},
      {make(IntegerArrayValue()), before, make(FlexValue())},
      {make(textsOf({u"s"})), before, make(FlexValue(u16(u"s")))},
      // out, by the getter of the target's kind
      {big, make(IntegerValue()), make(IntegerValue(-1))}, {big, make(DoubleValue()), make(DoubleValue(4294967295.0))},
      {big, make(BooleanValue()), make(BooleanValue(true))},
      {big, make(StringValue()), make(StringValue("4294967295"))},
      {make(FlexValue()), make(IntegerValue(5)), make(IntegerValue(0))},
      {make(FlexValue(300)), make(ByteArrayValue()), make(arrayOf<ByteArrayValue>({44}))},
      {make(FlexValue()), make(arrayOf<IntegerArrayValue>({1})), make(IntegerArrayValue())},
      {make(FlexValue(u16(u"1.5"))), make(DoubleArrayValue()), make(arrayOf<DoubleArrayValue>({1.5}))},
  });
  // clang-format on
  IntegerValue kept(9);
  EXPECT_QUARN_THROW(FlexValue(u16(u"abc")).assignTo(kept), "Cannot convert 'abc' to an integer");
  EXPECT_EQ(kept.getInteger(), 9);
}

TEST(FlexValueTest, PoolHooksAreTheReverseOfTheScalars) {
  FlexValue v(5);
  v.onActivate();
  EXPECT_EQ(v.getInteger(), 5);
  v.onDeactivate();
  EXPECT_TRUE(v.isNull());

  FlexValue *first = FlexValue::newInstance();
  *first = u16(u"held");
  first->deleteInstance();
  FlexValue *second = FlexValue::newInstance();
  EXPECT_EQ(second, first);
  EXPECT_TRUE(second->isNull());
  second->deleteInstance();
}

}  // namespace
}  // namespace quarn::test
