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

TEST(DynamicLibraryTest, OpensALibraryAndFindsItsSymbols) {
  DynamicLibrary library(QUARN_TEST_COMPONENTS);
  ASSERT_TRUE(library.isOpen()) << message(library);
  EXPECT_NE(library.getSymbol("DllCreateInstance"), nullptr);
  EXPECT_EQ(library.getSymbol("NoSuchSymbolAnywhere"), nullptr);
  EXPECT_EQ(message(library), "<none>");
  std::string path = QUARN_TEST_COMPONENTS;  // a path written with backslashes opens the same
  for (char &c : path)
    if (c == '/') c = '\\';
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
  DynamicLibrary library("/nonexistent/\xC3\xA9.so");  // the message is UTF-16
  quarn::BaseString<unsigned short> text(library.getErrorMessage());
  // "Failed to load dynamic library /nonexistent/" is 44 units; then U+00E9 as one unit.
  ASSERT_GT(text.getLength(), 45u);
  EXPECT_EQ(text[44], 0xE9);
  EXPECT_EQ(text[45], '.');
}

TEST(DynamicLibraryTest, ClosedLibraryOrBrokenTwinAnswersNoEntryPoint) {
  DynamicLibrary never;
  EXPECT_EQ(never.getSymbol("DllCreateInstance"), nullptr);
  DynamicLibrary library(QUARN_TEST_BROKEN);  // loads, but has no entry point
  ASSERT_TRUE(library.isOpen()) << message(library);
  EXPECT_NE(library.getSymbol("quarnTestBrokenMarker"), nullptr);
  EXPECT_EQ(library.getSymbol("DllCreateInstance"), nullptr);
  ASSERT_TRUE(library.open(QUARN_TEST_COMPONENTS));  // opening again replaces it
  EXPECT_NE(library.getSymbol("DllCreateInstance"), nullptr);
  library.close();
  EXPECT_FALSE(library.isOpen());
  EXPECT_EQ(library.getSymbol("DllCreateInstance"), nullptr);
  library.close();  // closing twice is harmless
  EXPECT_EQ(message(library), "<none>");
  ASSERT_TRUE(library.open(QUARN_TEST_COMPONENTS));
  EXPECT_FALSE(library.open("/nonexistent/libgone.so"));  // a failure leaves none open
  EXPECT_EQ(library.getSymbol("DllCreateInstance"), nullptr);
}

}  // namespace
