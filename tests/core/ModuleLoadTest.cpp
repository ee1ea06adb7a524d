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

TEST(ModuleLoadTest, LibquarnLoadsBindsEverythingAndUnloadsCleanlyTwice) {
  std::string command = std::string("'") + QUARN_MODULE_PROBE + "' '" + QUARN_LIBRARY + "' '" + QUARN_MODULE_CHECKER +
                        "' '" + QUARN_TEST_COMPONENTS + "' 2>&1";
  std::FILE *pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string output;
  char buffer[256];
  while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
  int status = pclose(pipe);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;
  EXPECT_EQ(output, "ok\n");
}

}  // namespace
