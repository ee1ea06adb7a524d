// Trace.cpp - the class-resolution trace on stderr
#include "Trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace quarn::detail {

bool tracingClasses() noexcept {
  char const *value = std::getenv("QUARN_TRACE_CLASSES");
  return value && *value && std::strcmp(value, "0") != 0;
}

void traceClasses(char const *format, ...) noexcept {
  if (!tracingClasses()) return;
  char line[2048];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  std::fprintf(stderr, "quarn: %s\n", line);
}

}  // namespace quarn::detail
