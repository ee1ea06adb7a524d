// ModuleLoadTest.cpp - libquarn loaded and unloaded by a process of its own
//
// This test program links libquarn, so it cannot unload it: the probe program
// (tests/components/ModuleProbe.cpp) loads libquarn with dlopen, checks that
// start-up interned and bound everything, that a component library's classes
// bind and unbind with it, and that libquarn unloads and loads again cleanly.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

struct ProbeRun {
  int status;
  std::string output;
};

ProbeRun runProbe(std::string const &arguments) {
  std::string command = std::string("'") + QUARN_MODULE_PROBE + "' " + arguments + " 2>&1";
  ProbeRun run{-1, {}};
  std::FILE *pipe = popen(command.c_str(), "r");
  if (!pipe) return run;
  char buffer[256];
  while (std::fgets(buffer, sizeof buffer, pipe)) run.output += buffer;
  int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

TEST(ModuleLoadTest, LibquarnLoadsBindsEverythingAndUnloadsCleanlyTwice) {
  ProbeRun run =
      runProbe(std::string("'") + QUARN_LIBRARY + "' '" + QUARN_MODULE_CHECKER + "' '" + QUARN_TEST_COMPONENTS + "'");
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(run.output, "ok\n");
}

}  // namespace
