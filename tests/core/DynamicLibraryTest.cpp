// DynamicLibraryTest.cpp - opening libraries, symbols, and the failure texts kept
#include <gtest/gtest.h>
#include <quarn/core/DynamicLibrary.h>
#include <quarnCore/Unicode.h>

#include <string>

namespace {

using quarn::DynamicLibrary;

std::string message(DynamicLibrary const &library) {
  quarn::BaseString<unsigned short> text(library.getErrorMessage());
  return text.isNull() ? std::string("<none>") : std::string(quarn::util::ConvertStringtoUTF8(text).getBuffer());
}

std::string withBackslashes(std::string path) {
  for (char &c : path)
    if (c == '/') c = '\\';
  return path;
}

TEST(DynamicLibraryTest, OpensALibraryAndFindsItsSymbols) {
  DynamicLibrary library(QUARN_TEST_COMPONENTS);
  ASSERT_TRUE(library.isOpen()) << message(library);
  EXPECT_NE(library.getSymbol("DllCreateInstance"), nullptr);
  EXPECT_EQ(library.getSymbol("NoSuchSymbolAnywhere"), nullptr);
  EXPECT_EQ(message(library), "<none>");
}

TEST(DynamicLibraryTest, OpensAPathWrittenWithBackslashes) {
  DynamicLibrary library;
  std::string path = withBackslashes(QUARN_TEST_COMPONENTS);
  ASSERT_TRUE(library.open(path.c_str())) << message(library);
  EXPECT_STREQ(library.getPath(), QUARN_TEST_COMPONENTS);
}

TEST(DynamicLibraryTest, FailedOpenKeepsTheReasonWithTheConvertedPath) {
  struct Case {
    char const *path;
    char const *message;
  } const cases[] = {
      {"/nonexistent/libgone.so",
       "Failed to load dynamic library /nonexistent/libgone.so: /nonexistent/libgone.so: cannot open shared "
       "object file: No such file or directory"},
      {"\\nonexistent\\libgone.so",
       "Failed to load dynamic library /nonexistent/libgone.so: /nonexistent/libgone.so: cannot open shared "
       "object file: No such file or directory"},
      {"/nonexistent/\xC3\xA9.so",
       "Failed to load dynamic library /nonexistent/\xC3\xA9.so: /nonexistent/\xC3\xA9.so: cannot open shared "
       "object file: No such file or directory"},
      // An empty path would name the program itself: it is refused without asking the system.
      {"", "Failed to load dynamic library "},
  };
  for (Case const &c : cases) {
    DynamicLibrary library;
    EXPECT_FALSE(library.open(c.path)) << c.path;
    EXPECT_FALSE(library.isOpen());
    EXPECT_EQ(message(library), c.message);
  }
}

TEST(DynamicLibraryTest, ErrorMessageIsUtf16) {
  DynamicLibrary library("/nonexistent/\xC3\xA9.so");
  quarn::BaseString<unsigned short> text(library.getErrorMessage());
  // "Failed to load dynamic library /nonexistent/" is 44 units; then U+00E9 as one unit.
  ASSERT_GT(text.getLength(), 45u);
  EXPECT_EQ(text[44], 0xE9);
  EXPECT_EQ(text[45], '.');
}

TEST(DynamicLibraryTest, ClosedLibraryAnswersNoSymbol) {
  DynamicLibrary never;
  EXPECT_FALSE(never.isOpen());
  EXPECT_EQ(never.getSymbol("DllCreateInstance"), nullptr);

  DynamicLibrary library(QUARN_TEST_COMPONENTS);
  ASSERT_TRUE(library.isOpen());
  library.close();
  EXPECT_FALSE(library.isOpen());
  EXPECT_EQ(library.getSymbol("DllCreateInstance"), nullptr);
  library.close();  // closing twice is harmless
  EXPECT_EQ(message(library), "<none>");
}

TEST(DynamicLibraryTest, BrokenTwinLoadsButHasNoEntryPoint) {
  DynamicLibrary library(QUARN_TEST_BROKEN);
  ASSERT_TRUE(library.isOpen()) << message(library);
  EXPECT_NE(library.getSymbol("quarnTestBrokenMarker"), nullptr);
  EXPECT_EQ(library.getSymbol("DllCreateInstance"), nullptr);
}

TEST(DynamicLibraryTest, OpeningAgainReplacesTheLibraryAndAFailureLeavesNoneOpen) {
  DynamicLibrary library(QUARN_TEST_BROKEN);
  ASSERT_TRUE(library.open(QUARN_TEST_COMPONENTS));
  EXPECT_NE(library.getSymbol("DllCreateInstance"), nullptr);
  EXPECT_FALSE(library.open("/nonexistent/libgone.so"));
  EXPECT_EQ(library.getSymbol("DllCreateInstance"), nullptr);
}

}  // namespace
