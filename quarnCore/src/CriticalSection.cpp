// CriticalSection.cpp - the contended path of Lockable: spin, then yield
#include <quarnCore/CriticalSection.h>

#include <thread>

namespace quarn {

void backOff(unsigned int attempt) noexcept {
  if (attempt >= 128) {
    std::this_thread::yield();
    return;
  }
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

void Lockable::lockContended(void *self) noexcept {
  for (unsigned int attempt = 0;; ++attempt) {
    if (m_owner.load(std::memory_order_relaxed) == nullptr) {
      void *expected = nullptr;
      if (m_owner.compare_exchange_weak(expected, self, std::memory_order_acquire, std::memory_order_relaxed)) return;
    }
    backOff(attempt);
  }
}

}  // namespace quarn
