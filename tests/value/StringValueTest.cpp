// StringValueTest.cpp - text coercions, unit order, hash, XML escapes, bytes and pooling of the string value
#include <gtest/gtest.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringValue.h>

#include <string>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

StringValue text(std::u16string_view s) {
  StringValue v;
  v = u16(s);
  return v;
}

// Scalars read the whole text (ValueConversionTest); arrays of integers read it as a list.
TEST(StringValueTest, CoercionsReadTheWholeTextAndIntegerArraysReadItAsAList) {
  EXPECT_QUARN_THROW(text(u"1 2").getDouble(), "Cannot convert '1 2' to a double");
  EXPECT_QUARN_THROW(StringValue().getInteger(), "Cannot convert '(null)' to an integer");
  EXPECT_EQ(str(StringValue("caf\xE9\xFF").getString()), u"caf\u00E9\u00FF");  // narrow text widens byte by byte
  // clang-format off
  struct Case { std::u16string text; std::vector<int> ints; } const cases[] = {
      {u"1, 2,3  4", {1, 2, 3, 4}}, {u"7", {7}}, {u"", {}},
      {u"5 x 6", {5}},  // a bad item ends the list; the result is ignored
  };
  // clang-format on
  for (auto const &c : cases) {
    Array<int> ints;
    ints.append(99);
    text(c.text).getArray(ints);
    EXPECT_EQ(std::vector<int>(ints.begin(), ints.end()), c.ints) << utf8(u16(c.text));
  }
  Array<WString> texts;
  text(u"1 2 3").getArray(texts);
  ASSERT_EQ(texts.getSize(), 1u);
  EXPECT_EQ(str(texts[0]), u"1 2 3");
}

TEST(StringValueTest, ComparesUnitByUnitWithNullFirstAndHashesTheUnits) {
  StringValue null;
  // clang-format off
  struct Case { StringValue a, b; int expected; } const cases[] = {
      {null, text(u""), -1}, {text(u""), null, 1}, {null, null, 0}, {text(u""), text(u""), 0},
      {text(u"a"), text(u"c"), 'a' - 'c'}, {text(u"ab"), text(u"a"), 'b'},
      {text(u"\uFFFF"), text(u"a"), 0xFFFF - 'a'},  // units are unsigned
  };
  // clang-format on
  for (auto const &c : cases)
    EXPECT_EQ(c.a.compare(c.b), c.expected) << utf8(c.a.getString()) << " / " << utf8(c.b.getString());
  EXPECT_EQ(text(u"1").compare(IntegerValue(1)), 'I' - 'S');
  // the hash runs over the units up to the terminator
  EXPECT_EQ(StringValue().hash(), 0u);
  EXPECT_EQ(text(u"").hash(), 0u);
  EXPECT_EQ(text(u"ab").hash(), 97u * 31u + 98u);
  unsigned int h = 0;
  for (char16_t c : std::u16string(u"h\u00E9llo, w\u00F6rld")) h = h * 31u + c;
  EXPECT_EQ(text(u"h\u00E9llo, w\u00F6rld").hash(), h);
}

TEST(StringValueTest, XmlTextEscapesTheFiveSpecialCharactersAndReadsBackUnchanged) {
  WString out, extra;
  EXPECT_TRUE(text(u"a<b&c>\"d\"'e'").getXMLText(out, extra));
  EXPECT_EQ(str(out), u"a&lt;b&amp;c&gt;&quot;d&quot;&apos;e&apos;");
  EXPECT_EQ(str(extra), u"");
  text(u"&lt;").getXMLText(out, extra);
  EXPECT_EQ(str(out), u"&amp;lt;");  // escaped once, ampersand first

  StringValue read;
  read.setFromXMLText(u16(u"a&lt;b"), WString());
  EXPECT_EQ(str(read.getString()), u"a&lt;b");
}

TEST(StringValueTest, PayloadKeepsNullAndEmptyApart) {
  // clang-format off
  struct Case { StringValue value; int version; Bytes bytes; } const cases[] = {
      {StringValue(), 2, {0x00}}, {text(u""), 2, {0x04}}, {text(u"\u00E9"), 1, {0x08, 0xE9, 0x00}},
      {text(u"A\u20AC"), 2, {0x0C, 0x41, 0xE2, 0x82, 0xAC}},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(serialise(c.value, c.version), c.bytes) << utf8(c.value.getString());
    ChunkedInputStream in(c.bytes, 1, c.version);
    StringValue read("previous");
    read.deserialize(in);
    EXPECT_EQ(read.getString().isNull(), c.value.getString().isNull());
    EXPECT_EQ(read.compare(c.value), 0);
  }
}

TEST(StringValueTest, PoolKeepsSmallBuffersAndFreesLargeOnes) {
  // clang-format off
  struct Case { unsigned int length; bool kept; } const cases[] = {
      {10, true}, {1000, false}, {2000, false}, {500, true},
  };
  // clang-format on
  for (auto const &c : cases) {
    StringValue *v = StringValue::newInstance();
    v->getString() = u16(std::u16string(c.length, u'x'));
    unsigned short const *buffer = v->getString().getBuffer();
    v->deleteInstance();
    if (c.kept) {
      EXPECT_EQ(v->getString().getBuffer(), buffer) << c.length;  // lying in the pool
    } else {
      EXPECT_TRUE(v->getString().isNull()) << c.length;
    }
    StringValue *again = StringValue::newInstance();
    EXPECT_EQ(again, v);
    EXPECT_EQ(again->getString().isNull(), !c.kept);  // activation empties, keeping the buffer
    EXPECT_EQ(again->getString().getLength(), 0u);
    again->deleteInstance();
  }
}

TEST(StringValueTest, AttachStringTakesTheBufferWithoutCopying) {
  StringValue v("old");
  WString s = u16(u"new text");
  unsigned short const *buffer = s.getBuffer();
  v.attachString(s);
  EXPECT_EQ(v.getString().getBuffer(), buffer);
  EXPECT_TRUE(s.isNull());
  v.attachString(v.getString());
  EXPECT_EQ(str(v.getString()), u"new text");
}

TEST(StringValueTest, SetStringAndReadingFromMemoryUseTheBufferKept) {
  StringValue v(u16(std::u16string(40, u'x')).getBuffer());
  unsigned short const *const buffer = v.getString().getBuffer();
  std::u16string const ascii = u"abcdefghijklmnopqrstu";  // longer than one 16-unit block
  v.setString(reinterpret_cast<unsigned short const *>(ascii.data()), 3);
  EXPECT_EQ(v.getString().getBuffer(), buffer);
  EXPECT_EQ(str(v.getString()), u"abc");
  v.setString(v.getString().getBuffer() + 1, 2);  // from its own text
  EXPECT_EQ(str(v.getString()), u"bc");
  // ASCII and other texts read from memory, into the same buffer.
  for (std::u16string const &t : {ascii, std::u16string(u"a\u00E9b"), std::u16string()}) {
    Bytes const bytes = serialise(text(t));
    MemoryInputStream in(bytes.data(), static_cast<unsigned int>(bytes.size()));
    v.deserialize(in);
    EXPECT_EQ(v.getString().getBuffer(), buffer);
    EXPECT_EQ(str(v.getString()), t);
    EXPECT_EQ(in.getPosition(), bytes.size());
  }
  v.setString(nullptr, 0);
  EXPECT_TRUE(v.getString().isNull());
}

}  // namespace
}  // namespace quarn::test
