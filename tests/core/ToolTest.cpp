// ToolTest.cpp - the quarn command-line tool: commands, outputs and exit codes
#include <gtest/gtest.h>
#include <quarn/core/DynamicCreation.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "Tool.h"
#include "core/RegistrationFiles.h"

namespace {

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

TEST(ToolTest, RegisterWhichUnregisterRoundTripWithAbsolutePathsAndProxies) {
  ScratchClass scratch;
  Result registered = quarnTool({"register", scratch.name(), QUARN_TEST_COMPONENTS, "--description", "From the tool"});
  EXPECT_EQ(registered.status, 0) << registered.err;
  EXPECT_EQ(registered.out,
            "Registered " + scratch.name() + " (" + QUARN_TEST_COMPONENTS + ") in " + scratch.path() + "\n");
  EXPECT_NE(quarn::test::readBytes(scratch.path()).find("<mxq:description>From the tool</mxq:description>"),
            std::string::npos);

  // clang-format off
  struct Step { std::vector<std::string> args; int status; std::string out, err; } const steps[] = {
      {{"which", scratch.name()}, 0, std::string(QUARN_TEST_COMPONENTS) + "\n", ""},
      {{"unregister", scratch.name()}, 0, "Unregistered " + scratch.name() + " (removed " + scratch.path() + ")\n", ""},
      {{"which", scratch.name()}, 1, "", "quarn which: " + scratch.name() + " is not registered\n"},
  };
  // clang-format on
  for (Step const &s : steps) {
    Result result = quarnTool(s.args);
    EXPECT_EQ(result.status, s.status);
    EXPECT_EQ(result.out, s.out);
    EXPECT_EQ(result.err, s.err);
  }
  // register makes the library path absolute and marks proxies
  std::string library = QUARN_TEST_COMPONENTS;
  std::string directory = library.substr(0, library.rfind('/'));
  std::string relative = "./" + library.substr(library.rfind('/') + 1);
  std::string cwd = std::filesystem::current_path();
  std::filesystem::current_path(directory);
  Result result = quarnTool({"register", "--proxy", scratch.name(), "--description=x", relative});
  std::filesystem::current_path(cwd);
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(quarn::test::imported(scratch), quarn::CZedClassInfo(scratch.c_str(), "x", library.c_str(), true));
}

TEST(ToolTest, ClassesListsEachRegisteredClassOnceWithItsLibraryAndReportsUnreadableFiles) {
  ScratchClass plain("Marlix.test.", ".plain"), versioned("Marlix.test.", ".versioned"),
      mislabelled("Marlix.test.", ".mislabelled"), bad("Marlix.test.", ".bad");
  quarnTool({"register", plain.name(), QUARN_TEST_COMPONENTS});
  std::string const progid = "<mxq:class><mxq:progid>" + versioned.name() + "</mxq:progid>";
  versioned.write(progid + "<mxq:server>/one</mxq:server></mxq:class>", 1);
  versioned.write(progid + "<mxq:server proxy='1'>/two</mxq:server></mxq:class>", 2);
  mislabelled.write(
      "<mxq:class><mxq:progid>Marlix.test.SomethingElse</mxq:progid><mxq:server>/x</mxq:server></mxq:class>");
  bad.write("<mxq:class>");
  // Other tests may be writing bad files into the same folder meanwhile, so
  // only this test's own lines are checked.
  Result result = quarnTool({"classes"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.out.find(plain.name() + "\t" + QUARN_TEST_COMPONENTS + "\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find(versioned.name() + "\t/two\tproxy\n"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find(versioned.name() + ".1"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find(mislabelled.name()), std::string::npos) << result.out;
  EXPECT_NE(result.err.find("quarn classes: Registration file " + bad.path() + " of class " + bad.name() +
                            " is not valid XML: no element found at line 1, column 11.\n"),
            std::string::npos)
      << result.err;
}

TEST(ToolTest, FailuresAreOneLineWithTheirExitCode) {
  ScratchClass scratch;
  std::string const name = scratch.name();
  // clang-format off
  struct Case { std::vector<std::string> args; int status; std::string err; } const cases[] = {
      {{}, 2, ""},  // usage on stderr, checked below
      {{"frobnicate"}, 2, "quarn: unknown command 'frobnicate' (see quarn --help)\n"},
      {{"which"}, 2, "quarn which: expected which CLASS (see quarn which --help)\n"},
      {{"which", "a", "b"}, 2, "quarn which: expected which CLASS (see quarn which --help)\n"},
      {{"register", name}, 2,
       "quarn register: expected register CLASS LIBRARY [--description TEXT] [--proxy] (see quarn register --help)\n"},
      {{"register", name, QUARN_TEST_COMPONENTS, "--description"}, 2,
       "quarn register: --description needs a TEXT (see quarn register --help)\n"},
      {{"unregister", name, "--proxy"}, 2,
       "quarn unregister: unknown option '--proxy' (see quarn unregister --help)\n"},
      {{"register", name, "/nonexistent/libgone.so"}, 1,
       "quarn register: library not found: /nonexistent/libgone.so\n"},
      {{"unregister", name}, 1, "quarn unregister: " + name + " is not registered\n"},
      {{"which", "../etc/passwd"}, 1,
       "quarn which: Invalid class name '../etc/passwd': a class name must not be empty or contain '/', '\\' or "
       "'..'.\n"},
      {{"register", "Marlix/x", QUARN_TEST_COMPONENTS}, 1,
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

TEST(ToolTest, HelpGoesToStandardOutputAndSucceeds) {
  // clang-format off
  struct Case { std::vector<std::string> args; std::string start; } const cases[] = {
      {{"--help"}, "Usage: quarn COMMAND [ARGUMENTS]\n"},
      {{"register", "--help"}, "Usage: quarn register CLASS LIBRARY [--description TEXT] [--proxy]\n\n"},
      {{"unregister", "-h"}, "Usage: quarn unregister CLASS\n\n"},
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
