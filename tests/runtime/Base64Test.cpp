// Base64Test.cpp - the RFC 4648 vectors both ways, blanks, every rejection, ranges
#include <quarnCore/Base64.h>

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/ExpectThrow.h"

namespace {

using quarn::Array;
using quarn::InvalidIndexException;
using quarn::util::Base64;
using Wide = quarn::BaseString<unsigned short>;

Wide W(std::string_view text) {
  Wide s("");
  for (char c : text) s.append(static_cast<unsigned short>(static_cast<unsigned char>(c)));
  return s;
}

Array<unsigned char> bytesOf(std::string_view text) {
  Array<unsigned char> bytes;
  for (char c : text) bytes.append(static_cast<unsigned char>(c));
  return bytes;
}

std::string textOf(Array<unsigned char> const &bytes) { return std::string(bytes.begin(), bytes.end()); }

TEST(Base64Test, EncodesAndDecodesRfc4648Vectors) {
  struct Case {
    char const *bytes, *text;
  } const cases[] = {{"", ""},
                     {"f", "Zg=="},
                     {"fo", "Zm8="},
                     {"foo", "Zm9v"},
                     {"foob", "Zm9vYg=="},
                     {"fooba", "Zm9vYmE="},
                     {"foobar", "Zm9vYmFy"},
                     {"\xFB\xEF\xBE\xFF", "++++/w=="}};  // '+' and '/' are the last two digits
  for (auto const &c : cases) {
    SCOPED_TRACE(c.text);
    Wide text("stale");
    Base64::Encode(bytesOf(c.bytes), text);
    EXPECT_FALSE(text.isNull());
    EXPECT_EQ(text, W(c.text));
    Array<unsigned char> bytes = bytesOf("stale");
    Base64::Decode(W(c.text), bytes);
    EXPECT_EQ(textOf(bytes), c.bytes);
  }
}

TEST(Base64Test, RoundTripsEveryByteAtEveryLengthModuloThree) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  for (std::size_t length : {0, 1, 2, 3, 254, 255, 256}) {
    Wide text;
    Base64::Encode(bytesOf(std::string_view(all).substr(256 - length)), text);
    EXPECT_EQ(text.getLength(), (length + 2) / 3 * 4);
    Array<unsigned char> back;
    Base64::Decode(text, back);
    EXPECT_EQ(textOf(back), all.substr(256 - length));
  }
}

TEST(Base64Test, DecodeSkipsBlanksAnywhereAndRejectsBadTextKeepingTheOutput) {
  for (char const *text : {"Zm9v\r\nYmFy", " Z m 9 v\tY m F y ", "\nZm9vYmFy\n"}) {
    Array<unsigned char> out;
    Base64::Decode(W(text), out);
    EXPECT_EQ(textOf(out), "foobar") << text;
  }
  Array<unsigned char> out = bytesOf("stale");
  Base64::Decode(W("Zm8 =\n"), out);
  EXPECT_EQ(textOf(out), "fo");
  Base64::Decode(Wide(), out);
  EXPECT_EQ(out.getSize(), 0u);
  std::vector<Wide> bad;  // bad text is refused and the output kept
  for (char const *text : {"Zg", "Zg=", "Zm9", "Z===", "=Zg=", "Zg==Zg==", "Zg==Z",
                           "Zm9v=", "Zm9v====", "Zh==", "Zm9=", "Zm-v", "Zm_v", "Zm9v\f", "Zm9v.", "===="})
    bad.push_back(W(text));
  bad.push_back(W(std::string_view("Zm9v\0Zm9v", 9)));
  Wide nonAscii = W("Zm9");
  nonAscii.append(static_cast<unsigned short>(0x0141));
  bad.push_back(nonAscii);
  for (Wide const &text : bad) {
    Array<unsigned char> out = bytesOf("kept");
    EXPECT_QUARN_THROW(Base64::Decode(text, out), "Invalid Base64 text");
    EXPECT_EQ(textOf(out), "kept");
  }
}

TEST(Base64Test, EncodeRangeChecksTheRange) {
  Array<unsigned char> ten = bytesOf("0123456789");
  Wide out;
  Base64::EncodeRange(ten, 7, 3, out);
  EXPECT_EQ(out, W("Nzg5"));
  Base64::EncodeRange(ten, 10, 0, out);
  EXPECT_EQ(out, W(""));
  EXPECT_FALSE(out.isNull());

  struct Case {
    Array<unsigned char> const *data;
    unsigned int start, count;
    int index, lastValid;
  };
  Array<unsigned char> empty;
  Case const cases[] = {
      {&ten, 8, 5, 10, 9}, {&ten, 11, 0, 11, 9}, {&ten, 1, 0xFFFFFFFFu, 10, 9}, {&empty, 0, 1, 0, -1}};
  for (auto const &c : cases) {
    try {
      Base64::EncodeRange(*c.data, c.start, c.count, out);
      ADD_FAILURE() << "no exception for start " << c.start;
    } catch (InvalidIndexException const &e) {
      EXPECT_EQ(e.getIndex(), c.index);
      EXPECT_EQ(e.getLastValidIndex(), c.lastValid);
    }
  }
}

}  // namespace
