// BitCount.cpp - the population-count kernels and the choice between them
//
// Three implementations of the same four loops: 512-bit vectors with
// vpopcntq (sixteen words per step, the tail through a masked load, so no
// byte past the run is read), the scalar popcnt instruction (two words per
// step), and portable code for processors with neither. Each entry point
// starts as a pointer to a chooser that asks the processor once, stores the
// winners of all four loops and forwards the call; the pointers are relaxed
// atomics, so concurrent first calls merely choose the same thing twice.
#include "BitCount.h"

#include <immintrin.h>

#include <atomic>
#include <cstring>
#include <type_traits>

namespace quarn::detail::bitcount {

namespace {

using Run = unsigned int const *;
using Kernel = std::uint64_t (*)(Run, Run, unsigned int) noexcept;

// How the words of the two runs are combined before counting (One: only the first run).
struct One {};
struct And {};
struct Or {};
struct Xor {};

template <class Op, class T>
[[gnu::always_inline]] inline T apply(T a, T b) noexcept {
  if constexpr (std::is_same_v<Op, And>) return a & b;
  if constexpr (std::is_same_v<Op, Or>) return a | b;
  if constexpr (std::is_same_v<Op, Xor>) return a ^ b;
  (void)b;
  return a;
}

/// Two words at a time, then the odd one. Inlined into kernels compiled for
/// different targets, so __builtin_popcountll becomes popcnt where allowed.
template <class Op>
[[gnu::always_inline]] inline std::uint64_t scalarLoop(Run a, Run b, unsigned int words) noexcept {
  constexpr bool twoRuns = !std::is_same_v<Op, One>;
  std::uint64_t total = 0;
  unsigned int i = 0;
  for (; i + 2 <= words; i += 2) {
    std::uint64_t x, y = 0;
    std::memcpy(&x, a + i, sizeof x);
    if constexpr (twoRuns) std::memcpy(&y, b + i, sizeof y);
    total += static_cast<std::uint64_t>(__builtin_popcountll(apply<Op>(x, y)));
  }
  if (i < words) total += static_cast<std::uint64_t>(__builtin_popcount(apply<Op>(a[i], twoRuns ? b[i] : 0u)));
  return total;
}

template <class Op>
std::uint64_t portable(Run a, Run b, unsigned int words) noexcept {
  return scalarLoop<Op>(a, b, words);
}

template <class Op>
[[gnu::target("popcnt")]] std::uint64_t popcnt(Run a, Run b, unsigned int words) noexcept {
  return scalarLoop<Op>(a, b, words);
}

#define QUARN_AVX512_POPCOUNT gnu::target("avx512f,avx512vpopcntdq")

template <class Op>
[[QUARN_AVX512_POPCOUNT, gnu::always_inline]] inline __m512i apply512(__m512i a, __m512i b) noexcept {
  if constexpr (std::is_same_v<Op, And>) return _mm512_and_si512(a, b);
  if constexpr (std::is_same_v<Op, Or>) return _mm512_or_si512(a, b);
  if constexpr (std::is_same_v<Op, Xor>) return _mm512_xor_si512(a, b);
  (void)b;
  return a;
}

template <class Op>
[[QUARN_AVX512_POPCOUNT]] std::uint64_t avx512(Run a, Run b, unsigned int words) noexcept {
  constexpr bool twoRuns = !std::is_same_v<Op, One>;
  __m512i sum0 = _mm512_setzero_si512();
  __m512i sum1 = _mm512_setzero_si512();
  unsigned int i = 0;
  for (; i + 32 <= words; i += 32) {  // two independent sums hide the adder latency
    __m512i x0 = _mm512_loadu_si512(a + i);
    __m512i x1 = _mm512_loadu_si512(a + i + 16);
    if constexpr (twoRuns) {
      x0 = apply512<Op>(x0, _mm512_loadu_si512(b + i));
      x1 = apply512<Op>(x1, _mm512_loadu_si512(b + i + 16));
    }
    sum0 = _mm512_add_epi64(sum0, _mm512_popcnt_epi64(x0));
    sum1 = _mm512_add_epi64(sum1, _mm512_popcnt_epi64(x1));
  }
  for (; i < words; i += 16) {
    unsigned int left = words - i;
    auto mask = static_cast<__mmask16>(left >= 16 ? 0xFFFFu : (1u << left) - 1u);
    __m512i x = _mm512_maskz_loadu_epi32(mask, a + i);
    if constexpr (twoRuns) x = apply512<Op>(x, _mm512_maskz_loadu_epi32(mask, b + i));
    sum0 = _mm512_add_epi64(sum0, _mm512_popcnt_epi64(x));
  }
  alignas(64) std::uint64_t lanes[8];
  _mm512_store_si512(lanes, _mm512_add_epi64(sum0, sum1));
  std::uint64_t total = 0;
  for (std::uint64_t lane : lanes) total += lane;
  return total;
}

#undef QUARN_AVX512_POPCOUNT

Implementation const *table() noexcept {
  static Implementation const all[3] = {
      {"avx512-vpopcntdq",
       __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vpopcntdq"),
       {&avx512<One>, &avx512<And>, &avx512<Or>, &avx512<Xor>}},
      {"popcnt", __builtin_cpu_supports("popcnt") != 0, {&popcnt<One>, &popcnt<And>, &popcnt<Or>, &popcnt<Xor>}},
      {"portable", true, {&portable<One>, &portable<And>, &portable<Or>, &portable<Xor>}},
  };
  return all;
}

Implementation const &best() noexcept {
  __builtin_cpu_init();
  Implementation const *all = table();
  while (!all->supported) ++all;  // the portable one always is
  return *all;
}

template <int slot>
std::uint64_t choose(Run a, Run b, unsigned int words) noexcept;

// Constant-initialised, so a count made by start-up code of another file
// before this file's initialisers have run still works.
constinit std::atomic<Kernel> g_loop[4] = {&choose<0>, &choose<1>, &choose<2>, &choose<3>};

template <int slot>
std::uint64_t choose(Run a, Run b, unsigned int words) noexcept {
  Implementation const &chosen = best();
  for (int k = 0; k < 4; ++k) g_loop[k].store(chosen.loop[k], std::memory_order_relaxed);
  return chosen.loop[slot](a, b, words);
}

inline std::uint64_t run(int slot, Run a, Run b, unsigned int words) noexcept {
  return g_loop[slot].load(std::memory_order_relaxed)(a, b, words);
}

}  // namespace

std::uint64_t count(unsigned int const *a, unsigned int words) noexcept { return run(0, a, nullptr, words); }
std::uint64_t countAnd(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept {
  return run(1, a, b, words);
}
std::uint64_t countOr(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept {
  return run(2, a, b, words);
}
std::uint64_t countXor(unsigned int const *a, unsigned int const *b, unsigned int words) noexcept {
  return run(3, a, b, words);
}

Implementation const *implementations(unsigned int &count) noexcept {
  __builtin_cpu_init();
  count = 3;
  return table();
}

}  // namespace quarn::detail::bitcount
