// PoolCore.h - the book-keeping of a pool: the shared free stack and per-thread caches
//
// A PooledClassImp keeps its free instances and its count of instances handed
// out here, as untyped pointers; the class object adds what needs the type
// (construction, activation hooks, destruction through `destroy`).
//
// The shared part is the free stack, the count `base` and the statistics,
// all under the pool's re-entrant lock. An unbounded pool (maxSize -1) also
// gives every thread that uses it a cache of its own: up to kCapacity free
// instances and the thread's `credit`, the number of instances it took out
// and has not handed back. A thread's acquire and release then touch only its
// cache, under the cache's own lock, which other threads take only to clear
// the pool, to count it or to borrow credit. The instances handed out are
// `base` plus every credit, exactly; credits never drop below zero, so while
// `base` is not negative a thread with credit knows that some instance is out
// and may take one back without asking anyone. A release on a thread without
// credit (the instance came from another thread) borrows half of another
// thread's credit under the pool lock; only when no credit is found anywhere
// are all caches locked at once to decide whether the release is a leak, so
// the "Object leak..." rule is exact under any interleaving.
//
// A bounded pool keeps the single shared stack: its bound is tested against
// the exact count on every release.
//
// Caches are found through a per-thread table indexed by the pool's number
// (numbers are never reused). When a thread ends, its caches hand their
// instances and credit back to the shared part of their pools; when a pool is
// destroyed, it detaches the caches of threads still running, which free them
// when they end.
#pragma once

#include <atomic>

#include <quarn/core/Export.h>
#include <quarnCore/CriticalSection.h>
#include <quarnCore/Stack.h>

namespace quarn::detail {

class PoolCore;

/// One thread's free instances and credit for one pool.
struct alignas(64) PoolThreadCache {
  static constexpr unsigned int kCapacity = 64;

  void lock() noexcept {
    if (m_locked.exchange(true, std::memory_order_acquire)) [[unlikely]]
      lockContended();
  }
  void unlock() noexcept { m_locked.store(false, std::memory_order_release); }

  /// The most recently cached instance with one more credit, or null when the cache is empty.
  void *pop() noexcept {
    lock();
    unsigned int n = count.load(std::memory_order_relaxed);
    void *instance = nullptr;
    if (n != 0) [[likely]] {
      instance = slots[n - 1];
      count.store(n - 1, std::memory_order_relaxed);
      credit.store(credit.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
      reused.store(reused.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
    unlock();
    return instance;
  }
  /// Caches `instance` and spends one credit, when the thread has credit that
  /// is sure to stand for an instance out (`baseKnown`: the shared count is
  /// not negative) and there is room. False leaves everything unchanged.
  bool push(void *instance, bool baseKnown) noexcept {
    lock();
    int c = credit.load(std::memory_order_relaxed);
    unsigned int n = count.load(std::memory_order_relaxed);
    bool kept = c > 0 && baseKnown && n < kCapacity;
    if (kept) [[likely]] {
      slots[n] = instance;
      count.store(n + 1, std::memory_order_relaxed);
      credit.store(c - 1, std::memory_order_relaxed);
    }
    unlock();
    return kept;
  }
  /// Adds to the credit and the statistics.
  void adjust(int credit_, unsigned long created_, unsigned long reused_) noexcept {
    lock();
    credit.store(credit.load(std::memory_order_relaxed) + credit_, std::memory_order_relaxed);
    created.store(created.load(std::memory_order_relaxed) + created_, std::memory_order_relaxed);
    reused.store(reused.load(std::memory_order_relaxed) + reused_, std::memory_order_relaxed);
    unlock();
  }

  // Written by the owning thread under the lock, read by others under it;
  // atomics only so that the statistics may also be read without it.
  std::atomic<unsigned int> count{0};
  std::atomic<int> credit{0};
  std::atomic<unsigned long> created{0};
  std::atomic<unsigned long> reused{0};
  PoolCore *owner = nullptr;        // null once the pool is gone
  PoolThreadCache *next = nullptr;  // the owner's list
  void *slots[kCapacity];

 private:
  QUARN_API void lockContended() noexcept;
  std::atomic<bool> m_locked{false};
};

/// The per-thread table of caches, indexed by pool number.
struct ThreadPoolCaches {
  PoolThreadCache **slots;
  unsigned int size;
};
extern QUARN_API constinit thread_local ThreadPoolCaches t_poolCaches;

class QUARN_API PoolCore {
 public:
  using Destroy = void (*)(void *instance);

  PoolCore(int maxSize, Destroy destroy) noexcept;
  /// Detaches the caches of running threads. The free instances must be gone (clear()).
  ~PoolCore();
  PoolCore(PoolCore const &) = delete;
  PoolCore &operator=(PoolCore const &) = delete;

  /// The calling thread's cache for an unbounded pool, or null when the pool
  /// is bounded or the thread cannot have one (out of memory, thread ending).
  PoolThreadCache *threadCache() noexcept {
    ThreadPoolCaches const &table = t_poolCaches;
    if (m_index < table.size) [[likely]]
      if (PoolThreadCache *cache = table.slots[m_index]) [[likely]]
        return cache;
    return attachThread();
  }
  /// Whether a credit is sure to stand for an instance out.
  bool baseKnown() const noexcept { return m_base.load(std::memory_order_relaxed) >= 0; }

  /// Moves some free instances of the shared stack into `cache` and pops one
  /// from it (with its credit); null when the shared stack is empty.
  void *refill(PoolThreadCache &cache);
  /// Takes `instance` back through `cache` when the fast path could not:
  /// finds a credit for it (throwing "Object leak..." when no instance is
  /// out, the instance left with the caller) and keeps it, spilling half of
  /// a full cache to the shared stack.
  void releaseSlow(PoolThreadCache &cache, void *instance);

  // The shared path, used by bounded pools and when no cache is at hand;
  // the caller holds lock().
  Lockable &lock() const noexcept { return m_lock; }
  /// The top of the shared stack, or null.
  void *popShared() noexcept;
  /// Pushes onto the shared stack; false when there is no room.
  bool pushShared(void *instance) noexcept;
  void addBase(int delta) noexcept { m_base.store(m_base.load(std::memory_order_relaxed) + delta, std::memory_order_relaxed); }
  int getBase() const noexcept { return m_base.load(std::memory_order_relaxed); }
  void countCreated() noexcept { m_created.fetch_add(1, std::memory_order_relaxed); }
  void countReused() noexcept { m_reused.fetch_add(1, std::memory_order_relaxed); }
  /// Takes one instance off the count of instances out: the shared count or
  /// some thread's credit (`own` first). Throws "Object leak..." when the
  /// exact count is zero. The caller holds lock().
  void takeCredit(PoolThreadCache *own);
  /// Gives back the credit of an instance that `cache` took but could not hand out.
  void dropCredit(PoolThreadCache &cache) noexcept;

  /// Destroys every free instance, shared and cached, and returns how many.
  /// Each is destroyed with no lock held, so its destructor may release
  /// other instances, into this pool too (they are destroyed as well).
  unsigned int clear();

  // Statistics over the shared part and every cache.
  int getOutstanding() const noexcept;
  unsigned int getPoolSize() const noexcept;
  unsigned long getCreatedCount() const noexcept;
  unsigned long getReusedCount() const noexcept;

  /// Hands the instances and credit of `cache` to the shared part and forgets the cache.
  void retire(PoolThreadCache *cache) noexcept;

 private:
  PoolThreadCache *attachThread() noexcept;
  void *takeAny() noexcept;

  Stack<void *> m_free;
  std::atomic<int> m_base{0};
  mutable AutoCriticalSection m_lock;
  int const m_maxSize;
  unsigned int const m_index;
  Destroy const m_destroy;
  PoolThreadCache *m_caches = nullptr;
  std::atomic<unsigned long> m_created{0};
  std::atomic<unsigned long> m_reused{0};
};

}  // namespace quarn::detail
