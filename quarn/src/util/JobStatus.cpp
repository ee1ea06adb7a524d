// JobStatus.cpp - each job-status class as a set of codes, one bit per code
#include <quarn/util/JobStatus.h>

#include <initializer_list>

namespace quarn::util {

namespace {

constexpr std::uint32_t codes(std::initializer_list<int> list) {
  std::uint32_t mask = 0;
  for (int code : list) mask |= std::uint32_t{1} << code;
  return mask;
}

constexpr bool in(std::uint32_t mask, JobStatus status) noexcept {
  return status >= 0 && status < 32 && ((mask >> status) & 1u) != 0;
}

constexpr std::uint32_t kInitializing = codes({0, 1});
constexpr std::uint32_t kRunning = codes({2});
constexpr std::uint32_t kPaused = codes({3, 11});
constexpr std::uint32_t kDone = codes({4, 5, 6, 7, 8, 9});
constexpr std::uint32_t kTermination = codes({4, 5});
constexpr std::uint32_t kProcessExited = codes({5, 6, 7, 8, 9});
constexpr std::uint32_t kError = codes({7, 8, 9});

}  // namespace

bool isInitializing(JobStatus status) noexcept { return in(kInitializing, status); }
bool isRunning(JobStatus status) noexcept { return in(kRunning, status); }
bool isPaused(JobStatus status) noexcept { return in(kPaused, status); }
bool isDone(JobStatus status) noexcept { return in(kDone, status); }
bool isDoneWithTermination(JobStatus status) noexcept { return in(kTermination, status); }
bool isDoneWithProcessExited(JobStatus status) noexcept { return in(kProcessExited, status); }
bool isDoneWithError(JobStatus status) noexcept { return in(kError, status); }

}  // namespace quarn::util
