// ToolTest.cpp - the quarn command-line tool: commands, outputs and exit codes
#include <gtest/gtest.h>
#include <quarn/Version.h>
#include <quarn/core/DynamicCreation.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "Tool.h"
#include "core/RegistrationFiles.h"

namespace {

using quarn::test::ScopedClassesPath;
using quarn::test::ScratchClass;

struct Result {
  int status;
  std::string out, err;
};

Result quarnTool(std::vector<std::string> args) {
  args.insert(args.begin(), "quarn");
  std::vector<char *> argv;
  for (std::string &arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  std::ostringstream out, err;
  int status = quarn::tool::run(static_cast<int>(args.size()), argv.data(), out, err);
  return {status, out.str(), err.str()};
}

std::string const kLibrary = QUARN_TEST_COMPONENTS;
std::string const kServes = "Marlix.testlib.Widget, Marlix.testlib.Echo, Marlix.testlib.PropertyBag";

TEST(ToolTest, RegisterWhichUnregisterRoundTripWithAbsolutePathsAndProxies) {
  ScratchClass scratch("Marlix.testlib.any.");
  Result registered = quarnTool({"register", scratch.name(), kLibrary, "--description", "From the tool"});
  EXPECT_EQ(registered.status, 0) << registered.err;
  EXPECT_EQ(registered.out, "Registered " + scratch.name() + " (" + kLibrary + ") in " + scratch.path() + "\n");
  EXPECT_NE(quarn::test::readBytes(scratch.path()).find("<mxq:description>From the tool</mxq:description>"),
            std::string::npos);

  std::string const notFound = "No registration file " + scratch.name() + ".xml in " +
                               quarn::test::classesDirectory() + " (the folder beside " +
                               quarn::CClassRegistryFile::GetLibraryPath().getBuffer() + ").";
  // clang-format off
  struct Step { std::vector<std::string> args; int status; std::string out, err; } const steps[] = {
      {{"which", scratch.name()}, 0, kLibrary + "\n", ""},
      {{"unregister", scratch.name()}, 0, "Unregistered " + scratch.name() + " (removed " + scratch.path() + ")\n", ""},
      {{"which", scratch.name()}, 1, "", "quarn which: " + scratch.name() + " is not registered: " + notFound + "\n"},
  };
  // clang-format on
  for (Step const &s : steps) {
    Result result = quarnTool(s.args);
    EXPECT_EQ(result.status, s.status);
    EXPECT_EQ(result.out, s.out);
    EXPECT_EQ(result.err, s.err);
  }
  // register makes the library path absolute and marks proxies
  std::string directory = kLibrary.substr(0, kLibrary.rfind('/'));
  std::string relative = "./" + kLibrary.substr(kLibrary.rfind('/') + 1);
  std::string cwd = std::filesystem::current_path();
  std::filesystem::current_path(directory);
  Result result = quarnTool({"register", "--proxy", scratch.name(), "--description=x", relative});
  std::filesystem::current_path(cwd);
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(quarn::test::imported(scratch), quarn::CZedClassInfo(scratch.c_str(), "x", kLibrary.c_str(), true));
}

TEST(ToolTest, InspectListsWhatALibraryServesOrSaysWhyItCannotBeUsed) {
  std::string const broken = QUARN_TEST_BROKEN, unresolved = QUARN_TEST_UNRESOLVED, foreign = QUARN_TEST_FOREIGN;
  std::string const text = quarn::test::classesDirectory() + "/../CMakeFiles/../cmake_install.cmake";
  std::string const textFile = std::filesystem::path(text).lexically_normal().string();
  std::string const version = QUARN_VERSION_STRING;
  // clang-format off
  struct Case { std::string library; int status; std::string out, err; } const cases[] = {
      {kLibrary, 0, kLibrary + ": a component library built against libquarn " + version + ", serving 3 classes:\n"
                    "Marlix.testlib.Widget\tA widget for the tests\n"
                    "Marlix.testlib.Echo\tMade for any name under Marlix.testlib.any.\tproxy\n"
                    "Marlix.testlib.PropertyBag\tA property list of the test library's own\n", ""},
      {"/nonexistent/libgone.so", 1, "", "quarn inspect: cannot use /nonexistent/libgone.so: no such file\n"},
      {"/tmp", 1, "", "quarn inspect: cannot use /tmp: it is a directory, not a shared object\n"},
      {textFile, 1, "", "quarn inspect: cannot use " + textFile + ": it is not a shared object (no ELF header)\n"},
      {broken, 1, "", "quarn inspect: cannot use " + broken +
                      ": it is not a component library: it exports no DllCreateInstance\n"},
      {unresolved, 1, "", "quarn inspect: cannot use " + unresolved +
                          ": it does not load: undefined symbol: acme::iScaler::Tag (_ZN4acme7iScaler3TagE)\n"},
      {foreign, 1, "", "quarn inspect: cannot use " + foreign + ": it was built for libquarn " +
                       std::to_string(QUARN_VERSION_MAJOR + 1) + "." + std::to_string(QUARN_VERSION_MINOR) + "." +
                       std::to_string(QUARN_VERSION_PATCH) + ", and this is libquarn " + version + "\n"},
  };
  // clang-format on
  for (Case const &c : cases) {
    Result result = quarnTool({"inspect", c.library});
    EXPECT_EQ(result.status, c.status) << c.library;
    EXPECT_EQ(result.out, c.out);
    EXPECT_EQ(result.err, c.err);
  }
}

TEST(ToolTest, RegisterLoadsTheLibraryFirstAndRefusesWhatCannotServe) {
  ScopedClassesPath classes;
  std::string const broken = QUARN_TEST_BROKEN;
  std::string const wont = "quarn register: cannot register Marlix.test.X: ";
  // clang-format off
  struct Case { std::vector<std::string> args; std::string err; } const cases[] = {
      {{"register", "Marlix.test.X", "/tmp"}, wont + "/tmp: it is a directory, not a shared object\n"},
      {{"register", "Marlix.test.X", broken}, wont + broken +
                                              ": it is not a component library: it exports no DllCreateInstance\n"},
      {{"register", "Marlix.test.X", kLibrary}, wont + kLibrary + " does not serve it (DllCreateInstance returned "
                                                "null); it serves: " + kServes + "\n"},
      {{"register", "Marlix.testlib.throw.X", kLibrary}, "quarn register: cannot register Marlix.testlib.throw.X: " +
          kLibrary + " does not serve it (DllCreateInstance threw: The test library refuses Marlix.testlib.throw.X); "
          "it serves: " + kServes + "\n"},
      {{"register", broken, "--all"}, "quarn register: cannot register the classes of " + broken + ": " + broken +
                                      ": it is not a component library: it exports no DllCreateInstance\n"},
  };
  // clang-format on
  for (Case const &c : cases) {
    Result result = quarnTool(c.args);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);
  }
  EXPECT_TRUE(std::filesystem::is_empty(classes.folder()));  // nothing was written

  // --no-check writes without loading; --all writes every class the library describes
  Result unchecked = quarnTool({"register", "Marlix.test.X", broken, "--no-check"});
  EXPECT_EQ(unchecked.status, 0) << unchecked.err;
  Result all = quarnTool({"register", kLibrary, "--all"});
  ASSERT_EQ(all.status, 0) << all.err;
  EXPECT_EQ(all.out, "Registered Marlix.testlib.Widget (" + kLibrary + ") in " + classes.folder() +
                         "/Marlix.testlib.Widget.xml\nRegistered Marlix.testlib.Echo (" + kLibrary + ") in " +
                         classes.folder() + "/Marlix.testlib.Echo.xml\nRegistered Marlix.testlib.PropertyBag (" +
                         kLibrary + ") in " + classes.folder() + "/Marlix.testlib.PropertyBag.xml\n");
  quarn::CZedClassInfo echo;
  quarn::CClassRegistryFile::ImportDataFile(quarn::ClassTag("Marlix.testlib.Echo"), echo);
  EXPECT_EQ(echo, quarn::CZedClassInfo("Marlix.testlib.Echo", "Made for any name under Marlix.testlib.any.",
                                       kLibrary.c_str(), true));
}

TEST(ToolTest, CheckReportsEachBrokenEntryAndClassesMarksThem) {
  ScopedClassesPath classes;
  std::string const dir = classes.folder();
  auto write = [&](std::string const &name, std::string const &body) {
    std::ofstream(dir + "/" + name + ".xml") << "<mxq:class>" << body << "</mxq:class>";
  };
  auto entry = [](std::string const &progid, std::string const &server) {
    return "<mxq:progid>" + progid + "</mxq:progid><mxq:server>" + server + "</mxq:server>";
  };
  write("Marlix.testlib.Widget", entry("Marlix.testlib.Widget", kLibrary) + "<mxq:description>W</mxq:description>");
  write("Marlix.t.gone", entry("Marlix.t.gone", "/nonexistent/libgone.so"));
  write("Marlix.t.mislabelled", entry("Marlix.t.other", kLibrary));
  write("Marlix.t.noClass", "<mxq:server>" + kLibrary + "</mxq:server>");
  write("Marlix.t.noLibrary", "<mxq:progid>Marlix.t.noLibrary</mxq:progid>");
  write("Marlix.t.notServed", entry("Marlix.t.notServed", kLibrary));
  write("Marlix.t.unusable", entry("Marlix.t.unusable", QUARN_TEST_BROKEN));
  std::ofstream(dir + "/Marlix.t.unreadable.xml") << "<mxq:class>";

  Result checked = quarnTool({"check"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(checked.out,
            dir + "/Marlix.t.gone.xml: its library /nonexistent/libgone.so does not exist\n" +
            dir + "/Marlix.t.mislabelled.xml: it is for class Marlix.t.other, which its file name does not match\n" +
            dir + "/Marlix.t.noClass.xml: it names no class (no mxq:progid inside mxq:class)\n" +
            dir + "/Marlix.t.noLibrary.xml: it names no library (no mxq:server inside mxq:class)\n" +
            dir + "/Marlix.t.notServed.xml: its library " + kLibrary +
                " no longer serves Marlix.t.notServed (DllCreateInstance returned null)\n" +
            dir + "/Marlix.t.unreadable.xml: Registration file " + dir + "/Marlix.t.unreadable.xml of class "
                "Marlix.t.unreadable is not valid XML: no element found at line 1, column 11.\n" +
            dir + "/Marlix.t.unusable.xml: its library " + QUARN_TEST_BROKEN +
                " cannot be used: it is not a component library: it exports no DllCreateInstance\n"
            "Checked 8 registration files in " + dir + ": 7 problems.\n");

  Result listed = quarnTool({"classes"});
  EXPECT_EQ(listed.status, 1);
  EXPECT_EQ(listed.out,
            "Marlix.t.gone\t/nonexistent/libgone.so\tBROKEN: the library does not exist\n"
            "Marlix.t.mislabelled\t" + kLibrary + "\tBROKEN: the file is for class Marlix.t.other\n"
            "Marlix.t.noClass\t" + kLibrary + "\tBROKEN: the file names no class\n"
            "Marlix.t.noLibrary\t-\tBROKEN: the file names no library\n"
            "Marlix.t.notServed\t" + kLibrary + "\t\n"
            "Marlix.t.unreadable\t-\tBROKEN: Registration file " + dir + "/Marlix.t.unreadable.xml of class "
                "Marlix.t.unreadable is not valid XML: no element found at line 1, column 11.\n"
            "Marlix.t.unusable\t" + QUARN_TEST_BROKEN + "\t\n"
            "Marlix.testlib.Widget\t" + kLibrary + "\tW\n");

  for (char const *gone : {"gone", "mislabelled", "noClass", "noLibrary", "notServed", "unreadable", "unusable"})
    std::filesystem::remove(dir + "/Marlix.t." + gone + ".xml");
  checked = quarnTool({"check"});
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(checked.out, "Checked 1 registration file in " + dir + ": no problems.\n");
}

TEST(ToolTest, ClassesListsEachVersionedClassOnceUnderTheVersionInUse) {
  ScopedClassesPath classes;
  ScratchClass versioned("Marlix.test.", ".versioned");
  std::string const progid = "<mxq:class><mxq:progid>" + versioned.name() + "</mxq:progid>";
  versioned.write(progid + "<mxq:server>/one</mxq:server></mxq:class>", 1);
  versioned.write(progid + "<mxq:server proxy='1'>" + kLibrary + "</mxq:server></mxq:class>", 2);
  Result result = quarnTool({"classes"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, versioned.name() + "\t" + kLibrary + "\t\tproxy\n");
}

TEST(ToolTest, FailuresAreOneLineWithTheirExitCode) {
  ScratchClass scratch;
  std::string const name = scratch.name();
  std::string const registerUsage =
      "register CLASS LIBRARY [--description TEXT] [--proxy] [--no-check] | register LIBRARY --all";
  // clang-format off
  struct Case { std::vector<std::string> args; int status; std::string err; } const cases[] = {
      {{}, 2, ""},  // usage on stderr, checked below
      {{"frobnicate"}, 2, "quarn: unknown command 'frobnicate' (see quarn --help)\n"},
      {{"help", "frobnicate"}, 2, "quarn: unknown command 'frobnicate' (see quarn --help)\n"},
      {{"which"}, 2, "quarn which: expected which CLASS (see quarn which --help)\n"},
      {{"which", "a", "b"}, 2, "quarn which: expected which CLASS (see quarn which --help)\n"},
      {{"register"}, 2, "quarn register: expected " + registerUsage + " (see quarn register --help)\n"},
      {{"register", name}, 2,
       "quarn register: expected register CLASS LIBRARY or register LIBRARY --all (see quarn register --help)\n"},
      {{"register", name, kLibrary, "--all"}, 2,
       "quarn register: expected register CLASS LIBRARY or register LIBRARY --all (see quarn register --help)\n"},
      {{"register", kLibrary, "--all", "--no-check"}, 2,
       "quarn register: --all loads the library, so it cannot go with --no-check\n"},
      {{"register", name, kLibrary, "--description"}, 2,
       "quarn register: --description needs a TEXT (see quarn register --help)\n"},
      {{"unregister", name, "--proxy"}, 2,
       "quarn unregister: unknown option '--proxy' (see quarn unregister --help)\n"},
      {{"register", name, "/nonexistent/libgone.so"}, 1,
       "quarn register: cannot register " + name + ": /nonexistent/libgone.so: no such file\n"},
      {{"register", name, "/nonexistent/libgone.so", "--no-check"}, 1,
       "quarn register: library not found: /nonexistent/libgone.so\n"},
      {{"unregister", name}, 1, "quarn unregister: " + name + " is not registered\n"},
      {{"which", "../etc/passwd"}, 1,
       "quarn which: Invalid class name '../etc/passwd': a class name must not be empty or contain '/', '\\' or "
       "'..'.\n"},
      {{"register", "Marlix/x", kLibrary}, 1,
       "quarn register: Invalid class name 'Marlix/x': a class name must not be empty or contain '/', '\\' or '..'.\n"},
  };
  // clang-format on
  for (Case const &c : cases) {
    Result result = quarnTool(c.args);
    EXPECT_EQ(result.status, c.status) << result.err;
    EXPECT_EQ(result.out, "");
    if (!c.err.empty()) {
      EXPECT_EQ(result.err, c.err);
    }
  }
  EXPECT_EQ(quarnTool({}).err.rfind("Usage: quarn COMMAND [ARGUMENTS]\n", 0), 0u);
  EXPECT_FALSE(quarn::isClassNameRegistered(name.c_str()));
}

TEST(ToolTest, HelpAndVersionGoToStandardOutputAndSucceed) {
  // clang-format off
  struct Case { std::vector<std::string> args; std::string start; } const cases[] = {
      {{"--help"}, "Usage: quarn COMMAND [ARGUMENTS]\n"},
      {{"help"}, "Usage: quarn COMMAND [ARGUMENTS]\n"},
      {{"--version"}, std::string("quarn ") + QUARN_VERSION_STRING + " (libquarn " +
                      quarn::CClassRegistryFile::GetLibraryPath().getBuffer() + ")\n"},
      {{"register", "--help"}, "Usage: quarn register CLASS LIBRARY [--description TEXT] [--proxy] [--no-check]"},
      {{"help", "check"}, "Usage: quarn check\n\n"},
      {{"unregister", "-h"}, "Usage: quarn unregister CLASS\n\n"},
      {{"help", "inspect"}, "Usage: quarn inspect LIBRARY\n\n"},
      {{"which", "--help"}, "Usage: quarn which CLASS\n\n"}, {{"classes", "--help"}, "Usage: quarn classes\n\n"},
  };
  // clang-format on
  for (Case const &c : cases) {
    Result result = quarnTool(c.args);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.rfind(c.start, 0), 0u) << result.out;
    EXPECT_EQ(result.err, "");
  }
}

}  // namespace
