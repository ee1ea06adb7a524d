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
unsigned short const *wide(char16_t const *s) { return reinterpret_cast<unsigned short const *>(s); }

std::u16string toFileName(std::u16string const &name, char16_t const *prefix) {
  WString s = units(name);
  ConvertComponentNameToFileName(s, wide(prefix));
  return text(s);
}
std::u16string toComponentName(std::u16string const &name) {
  WString s = units(name);
  ConvertFileNameToComponentName(s);
  return text(s);
}

TEST(NameEncodingTest, ComponentNameToFileName) {
  struct Case {
    char16_t const *prefix;
    std::u16string name, expected;
  } const cases[] = {
      {u"x", u"a/b.c", u"xa\\b%2ec"},
      {u"", std::u16string(u"\x01\x1f\0", 3), u"%01%1f%00"},
      {u"", u" \\~#&é€\x7f", u" \\~#&é€\x7f"},
      {nullptr, u"a.b", u"a%2eb"},
      {u"dir/", u"", u"dir/"},
  };
  for (Case const &c : cases) EXPECT_EQ(toFileName(c.name, c.prefix), c.expected);
  std::u16string const escaped = u"!\"%'*.:;<>?|";
  char const hex[] = "0123456789abcdef";
  for (char16_t c = 0; c < 128; ++c) {
    bool const isEscaped = c < 32 || escaped.find(c) != std::u16string::npos;
    std::u16string const expected = isEscaped   ? std::u16string{u'%', char16_t(hex[c >> 4]), char16_t(hex[c & 15])}
                                    : c == u'/' ? u"\\"
                                                : std::u16string(1, c);
    EXPECT_EQ(toFileName(std::u16string(1, c), u""), expected) << int(c);
  }
}

TEST(NameEncodingTest, FileNameToComponentName) {
  struct Case {
    std::u16string name, expected;
  } const cases[] = {
      {u"a\\b%2ec", u"a\\b.c"},  // the slash does not come back
      {u"%2E%2e%7C%7c", u"..||"},
      {u"%41%ff%00", std::u16string(u"A\xff\0", 3)},
      {u"%:0%@@%;;", u"\x30\x99\x44"},       // ':' to '@' pass as 3 to 9
      {u"\u01410%\u01410", u"\u01410\xa0"},  // a digit is cut to a signed byte
      {u"", u""},
  };
  for (Case const &c : cases) EXPECT_EQ(toComponentName(c.name), c.expected);
  WString null;
  ConvertFileNameToComponentName(null);
  EXPECT_TRUE(null.isNull());
  for (std::u16string const name : {u"%", u"a%", u"a%2", u"%g0", u"%2G", u"% 1", u"%/0", u"%2\u0130", u"ok%2e%"}) {
    WString s = units(name);
    EXPECT_QUARN_THROW(ConvertFileNameToComponentName(s), "Illegal character in file name");
    EXPECT_EQ(text(s), name);  // unchanged
  }
}

TEST(NameEncodingTest, RandomNamesRoundTripAndRandomFileNamesDecodeOrThrow) {
  std::mt19937 random(12);
  std::uniform_int_distribution<int> length(0, 30), ascii(0, 127), any(0, 0xFFFF), coin(0, 3);
  std::u16string const fileAlphabet = u"%%%0123456789abcdefABCDEFgG:@/ \\\u0141\u0130\xff";
  std::uniform_int_distribution<std::size_t> pick(0, fileAlphabet.size() - 1);
  for (int round = 0; round < 3000; ++round) {
    std::u16string name, fileName;
    for (int n = length(random); n > 0; --n) {
      auto const c = static_cast<char16_t>(coin(random) ? ascii(random) : any(random));
      name.push_back(c == u'/' ? u'_' : c);  // slashes do not come back
      fileName.push_back(fileAlphabet[pick(random)]);
    }
    ASSERT_EQ(toComponentName(toFileName(name, nullptr)), name);
    WString s = units(fileName);
    try {
      ConvertFileNameToComponentName(s);
    } catch (Exception const &e) {
      ASSERT_STREQ(e.what(), "Illegal character in file name");
      ASSERT_EQ(text(s), fileName);
    }
  }
}

TEST(NameEncodingTest, UrlEncodeModes) {
  std::string const reserved = " \"#$%&+,;<=>?@[\\]^`{|}";
  for (int c = 1; c < 128; ++c) {
    unsigned short const in[] = {static_cast<unsigned short>(c), 0};
    char escape[8];
    std::snprintf(escape, sizeof escape, "@!u%02X!", c);
    std::string const same(1, static_cast<char>(c));
    bool const isReserved = reserved.find(static_cast<char>(c)) != std::string::npos;
    EXPECT_EQ(bytes(CgiFileUrlEncode(in, util::EncodeSpacesOnly)), c == ' ' ? "%20" : same) << c;
    EXPECT_EQ(bytes(CgiFileUrlEncode(in, util::EncodeReserved)), isReserved ? escape : same) << c;
    EXPECT_EQ(bytes(CgiFileUrlEncode(in, util::EncodeReservedAndSlash)), isReserved || c == '/' ? escape : same) << c;
  }
  for (auto mode : {util::EncodeSpacesOnly, util::EncodeReserved, util::EncodeReservedAndSlash}) {
    EXPECT_EQ(bytes(CgiFileUrlEncode(wide(u"\u00e9\u20ac"), mode)), "@!uC3!@!uA9!@!uE2!@!u82!@!uAC!");
    CString const fromNull = CgiFileUrlEncode(nullptr, mode);
    EXPECT_TRUE(!fromNull.isNull() && fromNull.isEmpty());
  }
  EXPECT_EQ(bytes(CgiFileUrlEncode(wide(u"a b/c"), util::EncodeReserved)), "a@!u20!b/c");
}

TEST(NameEncodingTest, UrlDecodeTurnsCompleteEscapesIntoPercentForm) {
  struct Case {
    char const *text, *expected;
  } const cases[] = {
      {"@!u2F!", "%2F"},     {"@!u2f!", "%2f"},     {"@!u2G!", "@!u2G!"},
      {"a@!u20!b", "a%20b"}, {"@!@!u41!", "@!%41"}, {"@!u41!!", "%41!"},
      {"@!U41!", "@!U41!"},  {"@!u4!", "@!u4!"},    {"", ""},
  };
  for (Case const &c : cases) EXPECT_EQ(bytes(CgiFileUrlDecode(c.text)), c.expected) << c.text;
  std::string const full = "x@!uC3!";
  for (std::size_t cut = 0; cut < full.size(); ++cut)
    EXPECT_EQ(bytes(CgiFileUrlDecode(full.substr(0, cut).c_str())), full.substr(0, cut));
  CString const fromNull = CgiFileUrlDecode(nullptr);
  EXPECT_TRUE(!fromNull.isNull() && fromNull.isEmpty());
}

// Percent-decoding of the conventional URL form, to check the pair end to end.
std::string percentDecode(std::string const &s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    bool const escape = s[i] == '%' && i + 2 < s.size();
    out.push_back(escape ? static_cast<char>(std::stoi(s.substr(i + 1, 2), nullptr, 16)) : s[i]);
    if (escape) i += 2;
  }
  return out;
}

TEST(NameEncodingTest, RandomTextsRoundTripAndRandomBytesDecode) {
  std::mt19937 random(56);
  std::uniform_int_distribution<int> length(0, 30), ascii(1, 127), any(0x80, 0xFFFF), coin(0, 3);
  std::string const byteAlphabet = "@@!!uu0aF9gG%\x80\xff";
  std::uniform_int_distribution<std::size_t> pick(0, byteAlphabet.size() - 1);
  for (int round = 0; round < 2000; ++round) {
    std::u16string t;
    std::string garbage;
    for (int n = length(random); n > 0; --n) {
      t.push_back(static_cast<char16_t>(coin(random) ? ascii(random) : any(random)));
      garbage.push_back(byteAlphabet[pick(random)]);
    }
    WString const s = units(t);
    std::string const utf8 = bytes(util::ConvertStringtoUTF8(s));
    for (auto mode : {util::EncodeReserved, util::EncodeReservedAndSlash})
      ASSERT_EQ(percentDecode(bytes(CgiFileUrlDecode(CgiFileUrlEncode(s.getBuffer(), mode).getBuffer()))), utf8);
    ASSERT_LE(CgiFileUrlDecode(garbage.c_str()).getLength(), garbage.size());
  }
}

}  // namespace
}  // namespace quarn
