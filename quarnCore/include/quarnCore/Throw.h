// Throw.h - cold, out-of-line throw helpers shared by the containers
//
// Hot paths test and call one of these [[noreturn]] functions, so the code that
// builds and throws the exception stays out of the inlined fast path.
#pragma once

#include <quarnCore/Export.h>

namespace quarn::detail {

/// Throws InvalidIndexException(index, lastValid) (both taken as signed 32-bit).
[[noreturn]] QUARN_CORE_API void throwInvalidIndex(unsigned int index, unsigned int lastValid);
/// Throws MemoryException.
[[noreturn]] QUARN_CORE_API void throwMemory();

}  // namespace quarn::detail
