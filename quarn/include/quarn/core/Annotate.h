// Annotate.h - the catch-and-annotate wrapper
//
// Operations that pass exceptions on say where they passed: a quarn::Exception
// gets the line "<Class>::<operation>: Tessary exception caught" appended and
// is thrown on with its type kept; an allocation failure (MemoryException or
// std::bad_alloc) becomes Exception "<Class>::<operation>: Bad Allocation
// <what>"; anything else becomes Exception "<Class>::<operation>: Severe error
// caught". With a null class name the operation is one name
// ("quarn::createInstance(char*)") and the forms lose the "<Class>::" part.
//
//   return detail::annotated("IntegerArrayValue", "setIthValue", [&] { ... });
#pragma once

#include <utility>

#include <quarn/core/Export.h>

namespace quarn::detail {

/// Call inside a catch block: rethrows the exception in flight, annotated.
[[noreturn]] QUARN_API void rethrowAnnotated(char const *className, char const *operation);

/// Runs `body` and annotates whatever it throws.
template <class F>
decltype(auto) annotated(char const *className, char const *operation, F &&body) {
  try {
    return std::forward<F>(body)();
  } catch (...) {
    rethrowAnnotated(className, operation);
  }
}

}  // namespace quarn::detail
