// CountingAllocator.cpp - counting replacements of malloc, or sanitizer hooks that count
#include "budget/CountingAllocator.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace {

std::atomic<long long> g_live{0};
std::atomic<long long> g_peak{0};
std::atomic<bool> g_counting{false};

void added(std::size_t n) noexcept {
  g_counting.store(true, std::memory_order_relaxed);
  long long now = g_live.fetch_add(static_cast<long long>(n), std::memory_order_relaxed) + static_cast<long long>(n);
  long long peak = g_peak.load(std::memory_order_relaxed);
  while (now > peak && !g_peak.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
  }
}
void removed(std::size_t n) noexcept { g_live.fetch_sub(static_cast<long long>(n), std::memory_order_relaxed); }

}  // namespace

namespace quarn::test {
long long liveHeapBytes() noexcept { return g_live.load(); }
long long peakHeapBytes() noexcept { return g_peak.load(); }
void resetPeakHeapBytes() noexcept { g_peak.store(g_live.load()); }
bool heapCounting() noexcept { return g_counting.load(); }
}  // namespace quarn::test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// The sanitizers' allocator interface (not every compiler ships its header).
extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(void const volatile *, std::size_t),
                                              void (*onFree)(void const volatile *));
std::size_t __sanitizer_get_allocated_size(void const volatile *p);
}

namespace {
void onMalloc(void const volatile *, std::size_t size) { added(size); }
void onFree(void const volatile *p) { removed(__sanitizer_get_allocated_size(p)); }
int const g_hooks = __sanitizer_install_malloc_and_free_hooks(onMalloc, onFree);
}  // namespace

#else

// Each block carries a header just below the pointer handed out: the start of
// the block the C library gave, and the size asked for.
extern "C" {
void *__libc_malloc(std::size_t);
void *__libc_memalign(std::size_t, std::size_t);
void __libc_free(void *);
}

namespace {

struct Header {
  void *base;
  std::size_t size;
};
constexpr std::size_t kHeader = 16;
static_assert(sizeof(Header) <= kHeader);

Header *headerOf(void *p) noexcept { return reinterpret_cast<Header *>(static_cast<char *>(p) - kHeader); }

void *place(void *base, std::size_t offset, std::size_t size) noexcept {
  if (!base) return nullptr;
  void *p = static_cast<char *>(base) + offset;
  *headerOf(p) = Header{base, size};
  added(size);
  return p;
}

void *allocateAligned(std::size_t alignment, std::size_t size) noexcept {
  if (alignment <= kHeader) return place(__libc_malloc(size + kHeader), kHeader, size);
  if (size > SIZE_MAX - alignment) return nullptr;
  return place(__libc_memalign(alignment, size + alignment), alignment, size);
}

}  // namespace

extern "C" {

void *malloc(std::size_t size) { return allocateAligned(kHeader, size); }

void free(void *p) {
  if (!p) return;
  Header h = *headerOf(p);
  removed(h.size);
  __libc_free(h.base);
}

void *calloc(std::size_t count, std::size_t size) {
  if (size && count > SIZE_MAX / size) return nullptr;
  void *p = malloc(count * size);
  if (p) std::memset(p, 0, count * size);
  return p;
}

void *realloc(void *p, std::size_t size) {
  if (!p) return malloc(size);
  if (size == 0) {
    free(p);
    return nullptr;
  }
  void *q = malloc(size);
  if (!q) return nullptr;
  std::memcpy(q, p, std::min(size, headerOf(p)->size));
  free(p);
  return q;
}

void *memalign(std::size_t alignment, std::size_t size) { return allocateAligned(alignment, size); }
void *aligned_alloc(std::size_t alignment, std::size_t size) { return allocateAligned(alignment, size); }
void *valloc(std::size_t size) { return allocateAligned(4096, size); }
void *pvalloc(std::size_t size) { return allocateAligned(4096, (size + 4095) & ~std::size_t{4095}); }
int posix_memalign(void **out, std::size_t alignment, std::size_t size) {
  void *p = allocateAligned(alignment, size);
  if (!p) return ENOMEM;
  *out = p;
  return 0;
}
std::size_t malloc_usable_size(void *p) { return p ? headerOf(p)->size : 0; }

}  // extern "C"

#endif
