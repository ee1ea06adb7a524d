// TextEncodingTest.cpp - XML escapes in their pass order, and printable forms of bytes
#include <gtest/gtest.h>
#include <quarn/util/TextEncoding.h>

#include <random>
#include <string>

namespace quarn {
namespace {

WString units(std::u16string const &text) {
  return WString(reinterpret_cast<unsigned short const *>(text.data()), static_cast<unsigned int>(text.size()));
}
std::u16string text(WString const &s) { return std::u16string(s.getBuffer(), s.getBuffer() + s.getLength()); }

std::u16string encoded(std::u16string const &in) {
  WString s = units(in);
  util::XMLEncode(s);
  return text(s);
}
std::u16string decoded(std::u16string const &in) {
  WString s = units(in);
  util::XMLDecode(s);
  return text(s);
}

TEST(TextEncodingTest, XmlEncodeEscapesEachSpecialCharacter) {
  struct Case {
    std::u16string in, out;
  };
  Case const cases[] = {
      {u"&", u"&amp;"},       {u"\"", u"&quot;"},       {u"'", u"&apos;"},
      {u">", u"&gt;"},        {u"<", u"&lt;"},          {u"\t", u"&#x9;"},
      {u"\r", u"&#xD;"},      {u"\n", u"&#xA;"},        {u"a<&>b", u"a&lt;&amp;&gt;b"},
      {u"&lt;", u"&amp;lt;"}, {u"plain é", u"plain é"}, {u"", u""},
  };
  for (Case const &c : cases) EXPECT_EQ(encoded(c.in), c.out);
}

TEST(TextEncodingTest, XmlDecodeRunsItsPassesInOrder) {
  struct Case {
    std::u16string in, out;
  };
  Case const cases[] = {
      {u"&amp;", u"&"},
      {u"&lt;", u"<"},
      {u"&gt;", u">"},
      {u"&quot;", u"\""},
      {u"&apos;", u"'"},
      {u"&#x9;", u"\t"},
      {u"&#xD;", u"\r"},
      {u"&#xA;", u"\n"},
      {u"&amp;lt;", u"<"},       // decoded twice, deliberately
      {u"&amp;amp;", u"&amp;"},  // each pass runs once
      {u"&amp;#xA;", u"\n"},
      {u"&lt;amp;", u"<amp;"},  // &lt; comes after &amp;
      {u"&AMP; &#xa; &lt &#9;", u"&AMP; &#xa; &lt &#9;"},
      {u"&&amp;&", u"&&&"},
      {u"a&quot;b&apos;c", u"a\"b'c"},
  };
  for (Case const &c : cases) EXPECT_EQ(decoded(c.in), c.out);
  WString null;
  util::XMLEncode(null);
  util::XMLDecode(null);
  EXPECT_TRUE(null.isNull());
}

TEST(TextEncodingTest, RandomTextsWithoutAmpersandsRoundTripAndDecodingSurvivesAnything) {
  std::mt19937 random(90);
  std::u16string const alphabet = u"&&&amp;ltgquosx#9DA<>\"'\t\r\n é";
  std::uniform_int_distribution<int> length(0, 24), pick(0, static_cast<int>(alphabet.size()) - 1);
  for (int round = 0; round < 3000; ++round) {
    std::u16string in;
    for (int n = length(random); n > 0; --n) in.push_back(alphabet[static_cast<std::size_t>(pick(random))]);
    std::u16string const out = decoded(in);
    ASSERT_LE(out.size(), in.size());
    std::u16string plain = in;
    std::erase(plain, u'&');
    ASSERT_EQ(decoded(encoded(plain)), plain);
  }
}

TEST(TextEncodingTest, PrintableAsciiIsTabLineFeedAndThePrintableRange) {
  for (int b = 0; b < 256; ++b)
    EXPECT_EQ(util::IsPrintableASCII(static_cast<char>(b)), b == 9 || b == 10 || (b >= 32 && b <= 126)) << b;
}

TEST(TextEncodingTest, NonPrintableBytesBecomeSignedOctalDigits) {
  struct Case {
    std::string in, out;
  };
  Case const cases[] = {
      {"plain\ttext\n", "plain\ttext\n"},
      {"\r", "0x015"},
      {"\x7f", "0x177"},
      {"\x01", "0x001"},
      {"\x1b[0m", "0x033[0m"},
      {std::string("a\0b", 3), "a0x000b"},
      {"\xe9", "0x0-2-7"},
      {"\x80", "0x-200"},
      {"\xff", "0x00-1"},
      {"\xc3\xa9",
       "0x0-7-5"
       "0x-1-2-7"},
      {"", ""},
  };
  for (Case const &c : cases) {
    CString s(c.in.data(), static_cast<unsigned int>(c.in.size()));
    util::ConvertToPrintableASCII(s);
    EXPECT_EQ(std::string(s.getBuffer(), s.getLength()), c.out);
  }
  CString null;
  util::ConvertToPrintableASCII(null);
  EXPECT_TRUE(null.isNull());
}

}  // namespace
}  // namespace quarn
