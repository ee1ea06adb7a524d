// Containers.cpp - cold paths of the stack, the hash map and AllocBase
#include <cstdlib>

#include <quarnCore/AllocBase.h>
#include <quarnCore/Exception.h>
#include <quarnCore/HashMap.h>
#include <quarnCore/Stack.h>

namespace quarn {

namespace detail {

void throwStackEmpty() { throw Exception("Stack is empty"); }

void throwHashMapError(HashMapError which) {
  switch (which) {
    case HashMapError::Find:
      throw Exception("Tried to find in a hash map with 0 buckets");
    case HashMapError::Put:
      throw Exception("Tried to put into a hash map with 0 buckets");
    case HashMapError::Remove:
      throw Exception("Tried to remove from hash map with 0 buckets");
    case HashMapError::Resize:
      break;
  }
  throw Exception("Cannot resize a hash map to 0");
}

unsigned int nextPrime(unsigned int n) {
  if (n <= 1) return 2;
  for (unsigned int candidate = (n % 2 == 0) ? n + 1 : n + 2;; candidate += 2) {
    bool prime = true;
    for (unsigned int d = 3; static_cast<unsigned long long>(d) * d <= candidate; d += 2) {
      if (candidate % d == 0) {
        prime = false;
        break;
      }
    }
    if (prime) return candidate;
  }
}

}  // namespace detail

void *AllocBase::_alloc(std::size_t bytes) {
  void *p = std::malloc(bytes ? bytes : 1);
  if (!p) detail::throwMemory();
  return p;
}

void AllocBase::_free(void *memory) noexcept { std::free(memory); }

}  // namespace quarn
