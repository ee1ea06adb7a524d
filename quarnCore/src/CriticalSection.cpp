// CriticalSection.cpp - the contended path of Lockable: spin, then yield
#include <quarnCore/CriticalSection.h>

#include <thread>

namespace quarn {

namespace {
inline void cpuRelax() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}
}  // namespace

void Lockable::lockContended(void *self) noexcept {
  for (unsigned int spins = 0;; ++spins) {
    if (m_owner.load(std::memory_order_relaxed) == nullptr) {
      void *expected = nullptr;
      if (m_owner.compare_exchange_weak(expected, self, std::memory_order_acquire, std::memory_order_relaxed)) return;
    }
    if (spins < 128)
      cpuRelax();
    else
      std::this_thread::yield();
  }
}

}  // namespace quarn
