// AllocBase.h - the allocation base of quarn's objects
//
// A class that derives from AllocBase allocates through _alloc and _free, which
// throw MemoryException instead of std::bad_alloc when memory runs out, so that
// every allocation failure in quarn has the same type.
#pragma once

#include <cstddef>

#include <quarnCore/Export.h>

namespace quarn {

struct QUARN_CORE_API AllocBase {
  /// Allocates `bytes` (at least one); throws MemoryException on failure.
  static void *_alloc(std::size_t bytes);
  /// Frees memory from _alloc; a null pointer is ignored.
  static void _free(void *memory) noexcept;

  static void *operator new(std::size_t bytes) { return _alloc(bytes); }
  static void operator delete(void *memory) noexcept { _free(memory); }
  static void *operator new(std::size_t, void *place) noexcept { return place; }
  static void operator delete(void *, void *) noexcept {}
};

}  // namespace quarn
