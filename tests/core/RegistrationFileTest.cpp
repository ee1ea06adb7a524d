// RegistrationFileTest.cpp - where registration files live, their versions, their exact text, reading them
#include <gtest/gtest.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/Class.h>
#include <quarn/core/DynamicCreation.h>

#include <set>
#include <string>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"

namespace {

using quarn::CClassRegistryFile;
using quarn::ClassTag;
using quarn::CZedClassInfo;
using quarn::test::imported;
using quarn::test::ScratchClass;
using quarn::test::text;

TEST(RegistrationFileTest, VersionInUseIsTheLastBeforeAGapAndFilesAreNamedByTheFirstSpelling) {
  // clang-format off
  struct Case { std::set<int> present; int version; } const cases[] = {  // present: 0 is the plain file
      {{}, 0}, {{0}, 0}, {{1}, 1}, {{0, 1}, 1}, {{1, 2}, 2}, {{1, 3}, 1}, {{2, 3}, 0}, {{0, 1, 2, 3}, 3},
  };
  // clang-format on
  for (Case const &c : cases) {
    ScratchClass scratch;
    for (int v : c.present)
      scratch.write("<mxq:class><mxq:server>/v" + std::to_string(v) + "</mxq:server></mxq:class>", v);
    ClassTag tag(scratch.c_str());
    EXPECT_EQ(CClassRegistryFile::GetVersionID(tag), c.version);
    EXPECT_EQ(text(CClassRegistryFile::GetFilePath(tag)), scratch.path(c.version));
    bool registered = c.present.count(c.version) != 0;
    EXPECT_EQ(quarn::isClassNameRegistered(scratch.c_str()), registered);
    EXPECT_EQ(CClassRegistryFile::Exists(scratch.c_str()), registered);  // by name, as spelled
    if (registered) {
      EXPECT_EQ(text(imported(scratch).server), "/v" + std::to_string(c.version));
    }
  }
  // the file is named by the first spelling interned
  ScratchClass scratch("Marlix.test.", ".MixedCase");
  ClassTag first(scratch.c_str());
  std::string shouted = scratch.name();
  for (char &c : shouted) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(text(CClassRegistryFile::GetFilePath(ClassTag(shouted.c_str()))), scratch.path());
  EXPECT_EQ(text(CClassRegistryFile::GetFilePath(first, 3)), scratch.path(3));
}

TEST(RegistrationFileTest, WritesTheExactText) {
  // clang-format off
  struct Case { CZedClassInfo info; std::string bytes; } const cases[] = {
      // after the progid line
      {{"", "Says hello", "/opt/marlix/libexample.so", false},
       "\t<mxq:server>/opt/marlix/libexample.so</mxq:server>\n\t<mxq:description>Says hello</mxq:description>\n"},
      {{"", "A <b> & c>\r\n\tcaf\xC3\xA9", "/opt/p&q.so", true},
       "\t<mxq:server proxy=\"true\">/opt/p&amp;q.so</mxq:server>\n"
       "\t<mxq:description>A &lt;b&gt; &amp; c&gt;&#xD;\n\tcaf\xC3\xA9</mxq:description>\n"},
      {{"", "", "", false}, "\t<mxq:server></mxq:server>\n\t<mxq:description></mxq:description>\n"},
  };
  // clang-format on
  for (Case const &c : cases) {
    ScratchClass scratch;
    CZedClassInfo info = c.info;
    info.progid = scratch.c_str();
    CClassRegistryFile::ExportDataFile(info);
    EXPECT_EQ(quarn::test::readBytes(scratch.path()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<mxq:class>\n\t<mxq:progid>" + scratch.name() +
                  "</mxq:progid>\n" + c.bytes + "</mxq:class>\n");
    EXPECT_EQ(imported(scratch), info);  // and reads back field for field
  }
}

TEST(RegistrationFileTest, ReaderSetsFieldsOnlyDirectlyInsideTheClassElement) {
  // clang-format off
  struct Case { char const *body; CZedClassInfo expected; } const cases[] = {
      // Any value of a first attribute named proxy marks a proxy, on any element.
      {"<mxq:class><mxq:server proxy=\"false\">/s</mxq:server></mxq:class>", {"", "", "/s", true}},
      {"<mxq:class proxy=\"no\"><mxq:server>/s</mxq:server></mxq:class>", {"", "", "/s", true}},
      {"<mxq:class><mxq:server at=\"1\" proxy=\"true\">/s</mxq:server></mxq:class>", {"", "", "/s", false}},
      // Names are compared exactly.
      {"<mxq:class><mxq:Server>/s</mxq:Server><MXQ:progid>p</MXQ:progid></mxq:class>", {"", "", "", false}},
      // Outside the class element, or nested in another known element, nothing is set.
      {"<root><mxq:progid>p</mxq:progid><mxq:server>/s</mxq:server></root>", {"", "", "", false}},
      {"<mxq:class><mxq:guid><mxq:progid>p</mxq:progid></mxq:guid></mxq:class>", {"", "", "", false}},
      {"<mxq:class><mxq:server><mxq:description>d</mxq:description></mxq:server></mxq:class>", {"", "", "", false}},
      // An unknown element inside ends the text collected so far.
      {"<mxq:class><mxq:description>a<i>b</i>c</mxq:description></mxq:class>", {"", "c", "", false}},
      // The last of repeated elements wins.
      {"<mxq:class><mxq:progid>a</mxq:progid><mxq:progid>b</mxq:progid></mxq:class>", {"b", "", "", false}},
  };
  // clang-format on
  for (Case const &c : cases) {
    ScratchClass scratch;
    scratch.write(c.body);
    EXPECT_EQ(imported(scratch), c.expected) << c.body;
  }
}

TEST(RegistrationFileTest, BadFilesAreRefusedNamingClassAndFile) {
  std::string const good = "<mxq:class><mxq:server>/lib/x.so</mxq:server></mxq:class>";
  // clang-format off
  struct Case {
    std::string bytes;
    std::string reason;  // after "Registration file <path> of class <name> "
  } const cases[] = {
      {"", "is not valid XML: no element found at line 1, column 0."},
      {good.substr(0, 30), "is not valid XML: no element found at line 1, column 30."},
      {good.substr(0, 21), "is not valid XML: unclosed token at line 1, column 11."},
      {"registration", "is not valid XML: syntax error at line 1, column 0."},
      {"<mxq:class><mxq:server>/x</mxq:class>", "is not valid XML: mismatched tag at line 1, column 27."},
      {"<mxq:class>\xFF</mxq:class>", "is not valid XML: not well-formed (invalid token) at line 1, column 11."},
      {good + "<mxq:class/>", "is not valid XML: junk after document element at line 1, column 57."},
      {good + std::string(CClassRegistryFile::kMaxFileSize + 1 - good.size(), ' '), "is larger than 65536 bytes."},
  };
  // clang-format on
  for (Case const &c : cases) {
    ScratchClass scratch;
    scratch.write(c.bytes);
    std::string start = "Registration file " + scratch.path() + " of class " + scratch.name() + " ";
    EXPECT_QUARN_THROW(imported(scratch), start + c.reason);
    // Through the creation path the failure is annotated, and the process goes on.
    EXPECT_QUARN_THROW(quarn::Class::findClassInstance(ClassTag(scratch.c_str())),
                       start + c.reason + "\nquarn::ServerPathFromClassName: Tessary exception caught");
  }
  ScratchClass atLimit;
  atLimit.write(good + std::string(CClassRegistryFile::kMaxFileSize - good.size(), '\n'));
  EXPECT_EQ(text(imported(atLimit).server), "/lib/x.so");
}

TEST(RegistrationFileTest, ExpandingEntitiesCannotGrowWithoutBound) {
  // Ten levels of ten: 10^10 bytes of text from a file of a few hundred.
  std::string bytes = "<?xml version=\"1.0\"?><!DOCTYPE mxq:class [<!ENTITY e0 \"xxxxxxxxxx\">";
  for (int i = 1; i < 10; ++i) {
    bytes += "<!ENTITY e" + std::to_string(i) + " \"";
    for (int j = 0; j < 10; ++j) bytes += "&e" + std::to_string(i - 1) + ";";
    bytes += "\">";
  }
  bytes += "]><mxq:class><mxq:description>&e9;</mxq:description></mxq:class>";
  ScratchClass scratch;
  scratch.write(bytes);
  CZedClassInfo info;
  EXPECT_QUARN_THROW(
      CClassRegistryFile::ImportDataFile(ClassTag(scratch.c_str()), info),
      "Registration file " + scratch.path() + " of class " + scratch.name() + " holds more than 65536 bytes of text.");
  EXPECT_EQ(text(info.description), "");
}

TEST(RegistrationFileTest, WritingReplacesAndRemovingDropsTheVersionInUse) {
  ScratchClass scratch;
  scratch.write("<mxq:class><mxq:server>/one</mxq:server></mxq:class>", 1);
  scratch.write("<mxq:class/>", 2);
  CClassRegistryFile::ExportDataFile(CZedClassInfo(scratch.c_str(), "new", "/lib/new.so"));
  EXPECT_FALSE(quarn::test::exists(scratch.path()));
  EXPECT_EQ(text(imported(scratch).server), "/lib/new.so");
  ClassTag tag(scratch.c_str());
  CClassRegistryFile::RemoveDataFile(tag);  // the one before comes back
  EXPECT_FALSE(quarn::test::exists(scratch.path(2)));
  EXPECT_EQ(text(imported(scratch).server), "/one");
  CClassRegistryFile::RemoveDataFile(tag);
  EXPECT_FALSE(quarn::isClassNameRegistered(scratch.c_str()));
  std::string message =
      "Component " + scratch.name() + " is not registered.\nFile does not exist: " + scratch.path() + ".";
  CZedClassInfo info("kept", "", "");
  EXPECT_FALSE(CClassRegistryFile::TryImportDataFile(tag, info));
  EXPECT_EQ(text(info.progid), "kept");
  EXPECT_QUARN_THROW(CClassRegistryFile::ImportDataFile(tag, info), message);
  EXPECT_QUARN_THROW(CClassRegistryFile::RemoveDataFile(tag),
                     message + "\nCClassRegistryFile::RemoveDataFile: Tessary exception caught");
}

TEST(RegistrationFileTest, NamesThatCouldLeaveTheFolderAreRefused) {
  std::string const validation = "\nCClassRegistryFile::ValidateClassName: Tessary exception caught";
  char const *const names[] = {
      "", "Marlix/test", "..", "../Marlix.escape", "Marlix..escape", "Marlix\\escape", "/tmp/Marlix.escape"};
  for (char const *name : names) {
    std::string refusal = std::string("Invalid class name '") + name +
                          "': a class name must not be empty or contain '/', '\\' or '..'." + validation;
    EXPECT_QUARN_THROW(CClassRegistryFile::ValidateClassName(name), refusal);
    EXPECT_QUARN_THROW(CClassRegistryFile::GetVersionID(ClassTag(name)),
                       refusal + "\nCClassRegistryFile::GetVersionID: Tessary exception caught");
    EXPECT_QUARN_THROW(CClassRegistryFile::ExportDataFile(CZedClassInfo(name, "", "/lib/x.so")),
                       refusal + "\nCClassRegistryFile::ExportDataFile: Tessary exception caught");
    EXPECT_QUARN_THROW(quarn::isClassNameRegistered(name),
                       refusal + "\nquarn::isClassNameRegistered: Tessary exception caught");
    EXPECT_QUARN_THROW(quarn::Class::findClassInstance(ClassTag(name)),
                       refusal + "\nquarn::ServerPathFromClassName: Tessary exception caught");
  }
  EXPECT_FALSE(quarn::test::exists(quarn::test::classesDirectory() + "/../Marlix.escape.xml"));
  EXPECT_FALSE(quarn::test::exists("/tmp/Marlix.escape.xml"));
}

TEST(RegistrationFileTest, TextsThatCannotBeReadBackOrFilesThatCannotBeCreatedAreNotWritten) {
  // clang-format off
  struct Case { CZedClassInfo info; char const *field; } const cases[] = {
      {{"", "bell\a", "/lib/x.so"}, "description"}, {{"", "ok", "/lib/\xFF.so"}, "library path"},
      {{"", "caf\xC3", "/lib/x.so"}, "description"},
      {{"", "end \xEF\xBF\xBE", "/lib/x.so"}, "description"},  // U+FFFE, which XML refuses
      {{"", "ok", "/lib/\xEF\xBF\xBF.so"}, "library path"},      // U+FFFF
  };
  // clang-format on
  for (Case const &c : cases) {
    ScratchClass scratch;
    CZedClassInfo info = c.info;
    info.progid = scratch.c_str();
    EXPECT_QUARN_THROW(CClassRegistryFile::ExportDataFile(info),
                       "Cannot register class " + scratch.name() + ": its " + c.field +
                           " is not UTF-8 text without control characters.\n"
                           "CClassRegistryFile::ExportDataFile: Tessary exception caught");
    EXPECT_FALSE(quarn::test::exists(scratch.path()));
  }
  {  // the neighbours of the refused characters are written and read back as they are
    ScratchClass scratch;
    CZedClassInfo info(scratch.c_str(), "\xEF\xBF\xBD \xF0\x90\x80\x80 \xC2\x85", "/lib/\xEE\x80\x80.so");
    CClassRegistryFile::ExportDataFile(info);
    CZedClassInfo back;
    CClassRegistryFile::ImportDataFile(ClassTag(scratch.c_str()), back);
    EXPECT_EQ(back, info);
  }
  ScratchClass scratch("Marlix.test.", "." + std::string(300, 'x'));  // longer than a file name may be
  EXPECT_QUARN_THROW(CClassRegistryFile::ExportDataFile(CZedClassInfo(scratch.c_str(), "", "/lib/x.so")),
                     "Failed to open file " + scratch.path() +
                         " for writing.\nCClassRegistryFile::ExportDataFile: Tessary exception caught");
  EXPECT_FALSE(quarn::isClassNameRegistered(scratch.c_str()));
}

}  // namespace
