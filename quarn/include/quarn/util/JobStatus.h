// JobStatus.h - the states of a job and the classes they fall into
//
// A job's status is a signed 32-bit code that runners store and exchange, so
// the numbers are fixed. The predicates sort a code into classes:
//
//   code  name                      Initializing Running Paused Done Termination ProcessExited Error
//    0    JobStatusCreated               x
//    1    JobStatusInitializing          x
//    2    JobStatusRunning                         x
//    3    JobStatusPaused                                  x
//    4    JobStatusTerminated                                    x       x
//    5    JobStatusTerminatedExited                              x       x            x
//    6    JobStatusCompleted                                     x                    x
//    7    JobStatusFailed                                        x                    x          x
//    8    JobStatusCrashed                                       x                    x          x
//    9    JobStatusLost                                          x                    x          x
//   10    JobStatusUnknown               (no class)
//   11    JobStatusPausing                                 x
//
// Code 10 answers false to every predicate, and code 5 (terminated, after
// which the job's process exited) counts both as terminated and as
// process-exited; both are intended. Any other code, negative ones included,
// answers false everywhere.
#pragma once

#include <cstdint>

#include <quarn/core/Export.h>

namespace quarn {

enum JobStatus : std::int32_t {
  JobStatusCreated = 0,           ///< made, not yet started
  JobStatusInitializing = 1,      ///< its components are being set up
  JobStatusRunning = 2,           ///< records are flowing
  JobStatusPaused = 3,            ///< stopped on request, can resume
  JobStatusTerminated = 4,        ///< stopped on request for good
  JobStatusTerminatedExited = 5,  ///< stopped on request, and its process has exited
  JobStatusCompleted = 6,         ///< finished normally, its process has exited
  JobStatusFailed = 7,            ///< finished with an error reported by a component
  JobStatusCrashed = 8,           ///< its process ended abnormally
  JobStatusLost = 9,              ///< its process went away without a word
  JobStatusUnknown = 10,          ///< the runner cannot tell
  JobStatusPausing = 11,          ///< a pause was asked for and is taking effect
};

namespace util {

/// 0, 1.
QUARN_API bool isInitializing(JobStatus status) noexcept;
/// 2.
QUARN_API bool isRunning(JobStatus status) noexcept;
/// 3, 11.
QUARN_API bool isPaused(JobStatus status) noexcept;
/// 4 to 9.
QUARN_API bool isDone(JobStatus status) noexcept;
/// 4, 5.
QUARN_API bool isDoneWithTermination(JobStatus status) noexcept;
/// 5 to 9.
QUARN_API bool isDoneWithProcessExited(JobStatus status) noexcept;
/// 7, 8, 9.
QUARN_API bool isDoneWithError(JobStatus status) noexcept;

}  // namespace util
}  // namespace quarn
