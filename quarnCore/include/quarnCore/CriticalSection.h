// CriticalSection.h - re-entrant locks and their scope guards
//
// Lockable is a re-entrant lock: the thread that holds it may take it again
// and must release it as often as it took it. It is built for short critical
// sections such as a pool's push and pop: taking a free lock is one
// compare-and-swap and releasing it is one store, so an uncontended lock pair
// costs a single locked instruction. A thread that finds the lock taken spins
// briefly and then yields its time slice until the lock is free.
//
// AutoCriticalSection and ForcedCriticalSection are the two critical sections
// of quarn (both are always real locks here). Guard holds a Lockable for its
// scope; UnGuard releases a held one for its scope and takes it back at the end.
// Locks are identified by the thread pointer, which is the same in every
// library of the process, so one lock may be taken recursively from code in
// libquarn and in a component library alike.
#pragma once

#include <atomic>

#include <quarnCore/Export.h>

namespace quarn {

/// Waits before a contended lock is tried again: a processor pause for the
/// first 128 attempts, then the rest of the time slice.
QUARN_CORE_API void backOff(unsigned int attempt) noexcept;

class QUARN_CORE_API Lockable {
 public:
  Lockable() = default;
  Lockable(Lockable const &) = delete;
  Lockable &operator=(Lockable const &) = delete;

  void lock() noexcept {
    void *self = __builtin_thread_pointer();
    if (m_owner.load(std::memory_order_relaxed) == self) {
      ++m_depth;
      return;
    }
    void *expected = nullptr;
    if (!m_owner.compare_exchange_strong(expected, self, std::memory_order_acquire, std::memory_order_relaxed))
        [[unlikely]]
      lockContended(self);
    m_depth = 1;
  }
  void unlock() noexcept {
    if (--m_depth == 0) m_owner.store(nullptr, std::memory_order_release);
  }
  bool tryLock() noexcept {
    void *self = __builtin_thread_pointer();
    if (m_owner.load(std::memory_order_relaxed) == self) {
      ++m_depth;
      return true;
    }
    void *expected = nullptr;
    if (!m_owner.compare_exchange_strong(expected, self, std::memory_order_acquire, std::memory_order_relaxed))
      return false;
    m_depth = 1;
    return true;
  }
  /// Whether the calling thread holds the lock.
  bool isHeldByCurrentThread() const noexcept {
    return m_owner.load(std::memory_order_relaxed) == __builtin_thread_pointer();
  }

 private:
  void lockContended(void *self) noexcept;

  std::atomic<void *> m_owner{nullptr};
  unsigned int m_depth = 0;  // touched only by the owner
};

class AutoCriticalSection : public Lockable {};
class ForcedCriticalSection : public Lockable {};

/// Holds `lock` for the guard's scope.
class Guard {
 public:
  explicit Guard(Lockable &lock) noexcept : m_lock(lock) { m_lock.lock(); }
  ~Guard() { m_lock.unlock(); }
  Guard(Guard const &) = delete;
  Guard &operator=(Guard const &) = delete;

 private:
  Lockable &m_lock;
};

/// Releases a held `lock` for the scope and takes it again at the end.
class UnGuard {
 public:
  explicit UnGuard(Lockable &lock) noexcept : m_lock(lock) { m_lock.unlock(); }
  ~UnGuard() { m_lock.lock(); }
  UnGuard(UnGuard const &) = delete;
  UnGuard &operator=(UnGuard const &) = delete;

 private:
  Lockable &m_lock;
};

}  // namespace quarn
