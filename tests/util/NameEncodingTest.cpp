// NameEncodingTest.cpp - component names as file names, and file-safe URL escapes
#include <gtest/gtest.h>
#include <quarn/util/NameEncoding.h>
#include <quarnCore/Unicode.h>

#include <random>
#include <string>
#include <vector>

#include "support/ExpectThrow.h"

namespace quarn {
namespace {

using util::CgiFileUrlDecode;
using util::CgiFileUrlEncode;
using util::ConvertComponentNameToFileName;
using util::ConvertFileNameToComponentName;

WString units(std::u16string const &text) {
  return WString(reinterpret_cast<unsigned short const *>(text.data()), static_cast<unsigned int>(text.size()));
}
std::u16string text(WString const &s) { return std::u16string(s.getBuffer(), s.getBuffer() + s.getLength()); }
std::string bytes(CString const &s) { return std::string(s.getBuffer(), s.getLength()); }

WString toFileName(std::u16string const &name, char16_t const *prefix) {
  WString s = units(name);
  ConvertComponentNameToFileName(s, reinterpret_cast<unsigned short const *>(prefix));
  return s;
}
WString toComponentName(std::u16string const &name) {
  WString s = units(name);
  ConvertFileNameToComponentName(s);
  return s;
}

TEST(NameEncodingTest, ComponentNameToFileName) {
  struct Case {
    char16_t const *prefix;
    std::u16string name, expected;
  };
  Case const cases[] = {
      {u"x", u"a/b.c", u"xa\\b%2ec"},
      {u"", u"!\"%'*.:;<>?|", u"%21%22%25%27%2a%2e%3a%3b%3c%3e%3f%7c"},
      {u"", std::u16string(u"\x01\x1f\0", 3), u"%01%1f%00"},
      {u"", u" \\~#&é€\x7f", u" \\~#&é€\x7f"},
      {nullptr, u"a.b", u"a%2eb"},
      {u"dir/", u"", u"dir/"},
      {u"", std::u16string(300, u'.'),
       [] {
         std::u16string s;
         for (int i = 0; i < 300; ++i) s += u"%2e";
         return s;
       }()},
  };
  for (Case const &c : cases) EXPECT_EQ(text(toFileName(c.name, c.prefix)), c.expected);
}

TEST(NameEncodingTest, EachAsciiCharacterEscapesOrStays) {
  std::u16string const escaped = u"!\"%'*.:;<>?|";
  for (char16_t c = 0; c < 128; ++c) {
    std::u16string const out = text(toFileName(std::u16string(1, c), u""));
    if (c < 32 || escaped.find(c) != std::u16string::npos)
      EXPECT_EQ(out.size(), 3u) << int(c);
    else
      EXPECT_EQ(out, c == u'/' ? u"\\" : std::u16string(1, c)) << int(c);
  }
}

TEST(NameEncodingTest, FileNameToComponentName) {
  struct Case {
    std::u16string name, expected;
  };
  Case const cases[] = {
      {u"a\\b%2ec", u"a\\b.c"},  // the slash does not come back
      {u"%2E%2e%7C%7c", u"..||"},
      {u"%41%ff%00", std::u16string(u"A\xff\0", 3)},
      {u"%:0%@@%;;", u"\x30\x99\x44"},  // ':' to '@' pass as 3 to 9
      {u"\u0141"
       u"0%\u01410",
       u"\u01410\xa0"},  // a digit is cut to a signed byte
      {u"", u""},
      {u"plain", u"plain"},
  };
  for (Case const &c : cases) EXPECT_EQ(text(toComponentName(c.name)), c.expected);
  WString null;
  ConvertFileNameToComponentName(null);
  EXPECT_TRUE(null.isNull());
}

TEST(NameEncodingTest, BadOrCutEscapeThrowsAndKeepsTheName) {
  for (std::u16string const name : {u"%", u"a%", u"a%2", u"%g0", u"%2G", u"% 1", u"%/0", u"%2\u0130", u"ok%2e%"}) {
    WString s = units(name);
    EXPECT_QUARN_THROW(ConvertFileNameToComponentName(s), "Illegal character in file name");
    EXPECT_EQ(text(s), name);
  }
}

TEST(NameEncodingTest, RandomNamesWithoutSlashesRoundTrip) {
  std::mt19937 random(12);
  std::uniform_int_distribution<int> length(0, 40), ascii(0, 127), wide(0, 0xFFFF), pick(0, 3);
  for (int round = 0; round < 2000; ++round) {
    std::u16string name;
    for (int n = length(random); n > 0; --n) {
      auto c = static_cast<char16_t>(pick(random) ? ascii(random) : wide(random));
      name.push_back(c == u'/' ? u'_' : c);
    }
    WString s = units(name);
    ConvertComponentNameToFileName(s, nullptr);
    ConvertFileNameToComponentName(s);
    ASSERT_EQ(text(s), name);
  }
}

TEST(NameEncodingTest, FileNameDecoderSurvivesRandomUnits) {
  std::mt19937 random(34);
  std::u16string const alphabet = u"%%%0123456789abcdefABCDEFgG:@/ \\\u0141\u0130\xff";
  std::uniform_int_distribution<int> length(0, 12), pick(0, static_cast<int>(alphabet.size()) - 1);
  for (int round = 0; round < 5000; ++round) {
    std::u16string name;
    for (int n = length(random); n > 0; --n) name.push_back(alphabet[static_cast<std::size_t>(pick(random))]);
    WString s = units(name);
    try {
      ConvertFileNameToComponentName(s);
      EXPECT_LE(s.getLength(), name.size());
    } catch (Exception const &e) {
      ASSERT_STREQ(e.what(), "Illegal character in file name");
      ASSERT_EQ(text(s), name);
    }
  }
}

TEST(NameEncodingTest, UrlEncodeModesOnEveryAsciiByte) {
  std::string const reserved = " \"#$%&+,;<=>?@[\\]^`{|}";
  for (int c = 1; c < 128; ++c) {
    unsigned short const in[] = {static_cast<unsigned short>(c), 0};
    char hex[8];
    std::snprintf(hex, sizeof hex, "@!u%02X!", c);
    std::string const same(1, static_cast<char>(c));
    bool const isReserved = reserved.find(static_cast<char>(c)) != std::string::npos;
    EXPECT_EQ(bytes(CgiFileUrlEncode(in, util::EncodeSpacesOnly)), c == ' ' ? "%20" : same) << c;
    EXPECT_EQ(bytes(CgiFileUrlEncode(in, util::EncodeReserved)), isReserved ? hex : same) << c;
    EXPECT_EQ(bytes(CgiFileUrlEncode(in, util::EncodeReservedAndSlash)), isReserved || c == '/' ? hex : same) << c;
  }
}

TEST(NameEncodingTest, UrlEncodeExamples) {
  struct Case {
    char16_t const *text;
    util::CgiFileUrlEncodeCharacters mode;
    char const *expected;
  };
  Case const cases[] = {
      {u"a b", util::EncodeSpacesOnly, "a%20b"},
      {u"a b", util::EncodeReserved, "a@!u20!b"},
      {u"a/b", util::EncodeReserved, "a/b"},
      {u"a/b", util::EncodeReservedAndSlash, "a@!u2F!b"},
      {u"\u00e9", util::EncodeSpacesOnly, "@!uC3!@!uA9!"},
      {u"\u00e9", util::EncodeReserved, "@!uC3!@!uA9!"},
      {u"\u00e9", util::EncodeReservedAndSlash, "@!uC3!@!uA9!"},
      {u"\u20ac%", util::EncodeSpacesOnly, "@!uE2!@!u82!@!uAC!%"},
      {u"~\x7f\t", util::EncodeReservedAndSlash, "~\x7f\t"},
      {u"", util::EncodeReserved, ""},
  };
  for (Case const &c : cases)
    EXPECT_EQ(bytes(CgiFileUrlEncode(reinterpret_cast<unsigned short const *>(c.text), c.mode)), c.expected);
  CString const fromNull = CgiFileUrlEncode(nullptr, util::EncodeReserved);
  EXPECT_FALSE(fromNull.isNull());
  EXPECT_EQ(fromNull.getLength(), 0u);
}

TEST(NameEncodingTest, UrlDecodeTurnsCompleteEscapesIntoPercentForm) {
  struct Case {
    char const *text, *expected;
  };
  Case const cases[] = {
      {"@!u2F!", "%2F"},     {"@!u2f!", "%2f"},     {"@!u2G!", "@!u2G!"},
      {"a@!u20!b", "a%20b"}, {"@!@!u41!", "@!%41"}, {"@!u41!!", "%41!"},
      {"@!U41!", "@!U41!"},  {"@!u4!", "@!u4!"},    {"", ""},
  };
  for (Case const &c : cases) EXPECT_EQ(bytes(CgiFileUrlDecode(c.text)), c.expected) << c.text;
  std::string const full = "x@!uC3!";
  for (std::size_t cut = 0; cut < full.size(); ++cut) {
    std::string const part = full.substr(0, cut);
    EXPECT_EQ(bytes(CgiFileUrlDecode(part.c_str())), part);
  }
  CString const fromNull = CgiFileUrlDecode(nullptr);
  EXPECT_FALSE(fromNull.isNull());
  EXPECT_EQ(fromNull.getLength(), 0u);
}

// Percent-decoding of the conventional URL form, to check the pair end to end.
std::string percentDecode(std::string const &s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '%' && i + 2 < s.size()) {
      out.push_back(static_cast<char>(std::stoi(s.substr(i + 1, 2), nullptr, 16)));
      i += 2;
    } else {
      out.push_back(s[i]);
    }
  }
  return out;
}

TEST(NameEncodingTest, RandomTextsSurviveEncodeDecodeAndPercentDecode) {
  std::mt19937 random(56);
  std::uniform_int_distribution<int> length(0, 30), ascii(1, 127), wide(0x80, 0xFFFF), pick(0, 3);
  for (int round = 0; round < 2000; ++round) {
    std::u16string t;
    for (int n = length(random); n > 0; --n)
      t.push_back(static_cast<char16_t>(pick(random) ? ascii(random) : wide(random)));
    WString const s = units(t);
    std::string const utf8 = bytes(util::ConvertStringtoUTF8(s));
    for (auto mode : {util::EncodeReserved, util::EncodeReservedAndSlash}) {
      CString const encoded = CgiFileUrlEncode(s.getBuffer(), mode);
      ASSERT_EQ(percentDecode(bytes(CgiFileUrlDecode(encoded.getBuffer()))), utf8);
    }
  }
}

TEST(NameEncodingTest, UrlDecoderSurvivesRandomBytes) {
  std::mt19937 random(78);
  std::string const alphabet = "@@!!uu0aF9gG%\x80\xff";
  std::uniform_int_distribution<int> length(0, 16), pick(0, static_cast<int>(alphabet.size()) - 1);
  for (int round = 0; round < 5000; ++round) {
    std::vector<char> in;
    for (int n = length(random); n > 0; --n) in.push_back(alphabet[static_cast<std::size_t>(pick(random))]);
    in.push_back(0);
    CString const out = CgiFileUrlDecode(in.data());
    ASSERT_LE(out.getLength(), in.size() - 1);
  }
}

}  // namespace
}  // namespace quarn
