// ExceptionTest.cpp - message formatting, UTF-8 what(), annotation, the subclasses
#include <quarnCore/Exception.h>

#include <string>

#include <gtest/gtest.h>

#include "support/ExpectThrow.h"

namespace {

using quarn::Exception;
using Wide = quarn::BaseString<unsigned short>;

TEST(ExceptionTest, FormatsPrintfConversionsAndTextExtensions) {
  unsigned short const wide[] = {'w', 'i', 'd', 'e', 0};
  struct Case {
    Exception e;
    char const *message;
  } const cases[] = {
      {Exception("plain"), "plain"},
      {Exception("%hs and %ls", "narrow", wide), "narrow and wide"},
      {Exception("%s|%5hs|%-5ls|%.2ls", "n", "ab", wide, wide), "n|   ab|wide |wi"},
      {Exception("%hs %ls", static_cast<char const *>(nullptr), static_cast<unsigned short const *>(nullptr)),
       "(null) (null)"},
      {Exception("%d|%x|%X|%5d|%-4d|%05d|%u", -42, 255, 255, 42, 7, 42, -1), "-42|ff|FF|   42|7   |00042|4294967295"},
      {Exception("100%% %c%c", 'o', 'k'), "100% ok"},
      {Exception("%ld %lld %g %.3f", 1L << 40, -(1LL << 40), 1.5, 2.0), "1099511627776 -1099511627776 1.5 2.000"}};
  for (auto const &c : cases) EXPECT_STREQ(c.e.what(), c.message);
}

TEST(ExceptionTest, WhatIsTheUtf8OfTheMessageAndAnnotationsAppendLines) {
  unsigned short const text[] = {0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
  Exception e("%ls|%hs", text, "\xE9");
  EXPECT_STREQ(e.what(), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80|\xC3\xA9");
  unsigned short const expected[] = {0xE9, 0x20AC, 0xD83D, 0xDE00, '|', 0xE9, 0};
  EXPECT_EQ(e.getMessage(), Wide(expected));
  Exception annotated("Cannot read %hs", "a.xml");  // annotations append lines
  annotated.annotate(Wide("while loading 'b'"));
  annotated.annotateFormat("at line %d", 12);
  EXPECT_EQ(annotated.getMessage(), Wide("Cannot read a.xml\nwhile loading 'b'\nat line 12"));
  EXPECT_STREQ(Exception(annotated).what(), "Cannot read a.xml\nwhile loading 'b'\nat line 12");
}

TEST(ExceptionTest, SubclassesCarryTheirDetailsAndCatchAsException) {
  try {
    throw quarn::InvalidIndexException(5, -1);
  } catch (Exception const &e) {
    auto const &index = dynamic_cast<quarn::InvalidIndexException const &>(e);
    EXPECT_EQ(index.getIndex(), 5);
    EXPECT_EQ(index.getLastValidIndex(), -1);
    EXPECT_STREQ(e.what(), "Invalid index 5 (last valid index -1)");
  }
  EXPECT_QUARN_THROW_AS(throw quarn::NotImplementedException("getArray of a node"), quarn::NotImplementedException,
                        "getArray of a node");
  EXPECT_QUARN_THROW_AS(throw quarn::MemoryException(), quarn::MemoryException, "Memory allocation failed");
}

}  // namespace
