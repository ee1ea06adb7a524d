// JobStatusTest.cpp - every job status code against every predicate
#include <gtest/gtest.h>
#include <quarn/util/JobStatus.h>

#include <string>

namespace quarn::test {
namespace {

static_assert(sizeof(JobStatus) == 4 && JobStatus(-1) < 0, "a signed 32-bit code");

TEST(JobStatusTest, EveryCodeFallsIntoExactlyItsClasses) {
  using Predicate = bool (*)(JobStatus) noexcept;
  Predicate const predicates[] = {util::isInitializing,        util::isRunning,
                                  util::isPaused,              util::isDone,
                                  util::isDoneWithTermination, util::isDoneWithProcessExited,
                                  util::isDoneWithError};
  // Per code -1..12, one letter per predicate in the order above (I R P D T X E), '.' for false.
  char const *const expected[] = {
      ".......",  // -1
      "I......",  // 0
      "I......",  // 1
      ".R.....",  // 2
      "..P....",  // 3
      "...DT..",  // 4
      "...DTX.",  // 5: terminated and process-exited
      "...D.X.",  // 6
      "...D.XE",  // 7
      "...D.XE",  // 8
      "...D.XE",  // 9
      ".......",  // 10: in no class
      "..P....",  // 11
      ".......",  // 12
  };
  for (int code = -1; code <= 12; ++code) {
    std::string got;
    for (int p = 0; p < 7; ++p) got += predicates[p](static_cast<JobStatus>(code)) ? "IRPDTXE"[p] : '.';
    EXPECT_EQ(got, expected[code + 1]) << "code " << code;
  }
}

}  // namespace
}  // namespace quarn::test
