// StringArrayValueTest.cpp - null against empty, case-blind search, conversions, hash and bytes of the string array
#include <quarn/value/StringArrayValue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

constexpr unsigned int kNotFound = StringArrayValue::kNotFound;

TEST(StringArrayValueTest, NullAndEmptyElementsStayDistinct) {
  StringArrayValue const both = textsOf({nullptr, u""});
  EXPECT_EQ(both.find(WString()), 0u);
  EXPECT_EQ(both.find(u16(u"")), 1u);
  EXPECT_EQ(both.find(WString(), 0), kNotFound);
  EXPECT_EQ(textsOf({nullptr}).compare(textsOf({u""})), -1);
  EXPECT_EQ(textsOf({u""}).compare(textsOf({nullptr})), 1);
  EXPECT_EQ(textsOf({nullptr}).compare(textsOf({nullptr})), 0);
  expectPayload(both, "08 00 04");
  expectPayload(textsOf({u"\u00E9"}), "04 08 C3 A9");
  expectPayload(textsOf({u"ab"}), "04 0C 61 00 62 00", 1);
}

TEST(StringArrayValueTest, OrderIsUnitWiseUnsignedWithAProperPrefixFirst) {
  struct Case {
    char16_t const *a, *b;
    int expected;
  } const cases[] = {{u"a", u"b", -1}, {u"ab", u"a", 1}, {u"\uFFFF", u"a", 1}, {u"", u"a", -1}, {u"x", u"x", 0}};
  for (auto const &c : cases) {
    EXPECT_EQ(textsOf({c.a}).compare(textsOf({c.b})), c.expected);
    EXPECT_EQ(textsOf({c.b}).compare(textsOf({c.a})), -c.expected);
  }
}

TEST(StringArrayValueTest, FindNoCaseFoldsOnlyAsciiLetters) {
  StringArrayValue a = textsOf({u"Hello", u"WORLD", nullptr, u"\u00C9t\u00C9"});
  EXPECT_EQ(a.findNoCase(u16(u"world").getBuffer()), 1u);
  EXPECT_EQ(a.findNoCase(u16(u"hELLO").getBuffer()), 0u);
  EXPECT_EQ(a.findNoCase(nullptr), 2u);
  EXPECT_EQ(a.findNoCase(u16(u"\u00E9t\u00E9").getBuffer()), kNotFound);
  EXPECT_EQ(a.findNoCase(u16(u"\u00C9T\u00C9").getBuffer()), 3u);
  EXPECT_EQ(a.findNoCase(u16(u"hell").getBuffer()), kNotFound);
  EXPECT_EQ(a.findNoCase(u16(u"hello").getBuffer(), 0), kNotFound);
  EXPECT_EQ(a.getNoCase(u16(u"WoRlD").getBuffer()), 1u);
  EXPECT_QUARN_THROW(a.getNoCase(u16(u"x").getBuffer()), "ArrayValueImpl::get, array value was not found");
  EXPECT_EQ(a.find(u16(u"world")), kNotFound);
}

TEST(StringArrayValueTest, ElementsConvertThroughTheTextReadersOneByOne) {
  StringArrayValue const a = textsOf({u" 12 ", u"2.5", u"off"});
  EXPECT_EQ(a.getIthInteger(0), 12);
  EXPECT_EQ(a.getIthDouble(1), 2.5);
  EXPECT_FALSE(a.getIthBoolean(2));
  EXPECT_QUARN_THROW(a.getIthInteger(2), "Cannot convert 'off' to an integer");
  Array<int> ints;
  ints.append(99);
  EXPECT_QUARN_THROW(a.getArray(ints), "Cannot convert '2.5' to an integer");
  EXPECT_EQ(ints.getSize(), 1u);  // left as it was
  textsOf({u"1", u"-2"}).getArray(ints);
  ASSERT_EQ(ints.getSize(), 2u);
  EXPECT_EQ(ints[1], -2);
}

TEST(StringArrayValueTest, HashXorsEachTextsLowBytePolynomial) {
  std::mt19937 gen(4);
  std::uniform_int_distribution<int> unit(1, 0xFFFF), length(0, 12);
  std::vector<std::u16string> texts(30);
  for (auto &t : texts)
    for (int n = length(gen); n > 0; --n) t.push_back(static_cast<char16_t>(unit(gen)));
  std::uint32_t h = 0;
  Array<WString> elements;
  for (auto const &t : texts) {
    std::uint32_t s = 0;
    for (char16_t u : t) s = s * 31u + (u & 0xFFu);
    h ^= s;
    elements.append(u16(t));
  }
  elements.append(WString());
  EXPECT_EQ(StringArrayValue(elements).hash(), h);
  std::shuffle(elements.begin(), elements.end(), gen);
  EXPECT_EQ(StringArrayValue(elements).hash(), h);
  EXPECT_EQ(textsOf({u"a\u0141"}).hash(), textsOf({u"aA"}).hash());
  EXPECT_EQ(textsOf({u"\u4142"}).hash(), textsOf({u"B"}).hash());
}

TEST(StringArrayValueTest, APooledArrayLetsGoOfItsStrings) {
  StringArrayValue a = textsOf({u"small", nullptr});
  a.add(std::string(3000, 'x').c_str());
  a.onDeactivate();
  EXPECT_EQ(a.getSize(), 0u);
  EXPECT_NE(a.getElements().getCapacity(), 0u);
}

}  // namespace
}  // namespace quarn::test
