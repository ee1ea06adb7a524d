// Trace.h - the class-resolution trace (QUARN_TRACE_CLASSES)
//
// With the environment variable QUARN_TRACE_CLASSES set to anything but "" or
// "0", every step of finding a class by name (the folders searched, the file
// read, the library loaded, what its entry point answered) is printed to
// stderr, one line each, starting "quarn: ". The variable is read at each
// step, so that a process can turn the trace on and off.
#pragma once

namespace quarn::detail {

/// Whether the trace is on.
bool tracingClasses() noexcept;
/// Prints one trace line (printf format, UTF-8 arguments) when the trace is on.
void traceClasses(char const *format, ...) noexcept __attribute__((format(printf, 1, 2)));

}  // namespace quarn::detail
