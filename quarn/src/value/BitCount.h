// BitCount.h - population counts over runs of 32-bit words, on the widest instructions present
//
// The bitsets count their bits here, a word run at a time: over one run
// (count), or over two runs of equal length combined word by word (countAnd,
// countOr, countXor). The first call picks the implementation the processor
// supports (512-bit vector population counts, the scalar popcnt instruction,
// or portable code) and every later call goes straight to it. Nothing here
// allocates or throws; the caller guarantees that `words` words are readable
// behind each pointer.
#pragma once

#include <cstdint>

namespace quarn::detail::bitcount {

std::uint64_t count(unsigned int const *a, unsigned int words) noexcept;
std::uint64_t countAnd(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept;
std::uint64_t countOr(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept;
std::uint64_t countXor(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept;

/// One implementation of the four loops (first run only, and, or, xor), for
/// tests that hold every implementation the processor supports against the others.
struct Implementation {
  char const *name;
  bool supported;
  std::uint64_t (*loop[4])(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept;
};
/// Every implementation, best first; `count` receives how many.
Implementation const *implementations(unsigned int &count) noexcept;

}  // namespace quarn::detail::bitcount
