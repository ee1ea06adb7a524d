// PooledClassImp.h - the class object of a pooled class
//
// Released instances are kept on a stack and handed out again, last released
// first. Acquire: pop and activate (onActivate) or construct a new T; count
// the instance as outstanding. Release: deactivate (onDeactivate, outside the
// lock, so that an instance may release nested instances into the same pool)
// and push it, unless pools are switched off (Object::m_dontUsePools) or
// `maxSize` instances or more are still outstanding, in which case it is
// destroyed. The bound counts instances handed out, not instances lying in the
// pool: with maxSize 50, a released instance is kept only while fewer than 50
// are out. maxSize -1 means no bound.
//
// Releasing into a pool with no instance outstanding throws "Object leak,
// object being returned to pool when none were outstanding..." and leaves the
// instance with the caller. Each pool has its own lock; acquire and release
// take it once each, so pools are safe to use from several threads.
#pragma once

#include <atomic>

#include <quarn/core/Class.h>
#include <quarn/core/Object.h>
#include <quarnCore/CriticalSection.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Stack.h>

namespace quarn {

template <class T, int maxSize>
class QUARN_API PooledClassImp : public ClassImp<T> {
 public:
  PooledClassImp() : name(this->tag.getName()) {}
  ~PooledClassImp() override { ClearPool(true); }

  /// A recycled (activated) instance, or a new one.
  T *acquire() {
    T *instance;
    {
      Guard guard(lock);
      if (!freeObjects.isEmpty()) {
        instance = freeObjects.pop();
        activate(instance);
        bump(reused);
      } else {
        instance = new T();
        bump(created);
      }
      outstanding.store(outstanding.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
    return instance;
  }

  /// A recycled instance given the state of `source` (the class's assignment),
  /// or a copy-constructed new one. A copy constructor that throws anything but
  /// a quarn exception is reported as "Error when calling class copy constructor.".
  T *acquireCopy(T const &source) {
    T *instance;
    Guard guard(lock);
    if (!freeObjects.isEmpty()) {
      instance = freeObjects.pop();
      activate(instance);
      if (instance != &source) {
        try {
          assignState(source, *instance);
        } catch (...) {
          destroy(instance);
          throw;
        }
      }
      bump(reused);
    } else {
      try {
        instance = new T(source);
      } catch (Exception const &) {
        throw;
      } catch (...) {
        detail::throwCopyConstructorError();
      }
      bump(created);
    }
    outstanding.store(outstanding.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    return instance;
  }

  /// Hands `instance` back (pooled or destroyed) and sets the caller's pointer to null.
  void release(T *&instance) {
    bool keep = !Object::m_dontUsePools &&
                (maxSize == -1 || outstanding.load(std::memory_order_relaxed) < maxSize);
    if (keep) {
      instance->onDeactivate();  // outside the lock: it may release nested instances here
      Guard guard(lock);
      int out = outstanding.load(std::memory_order_relaxed);
      if (out == 0) detail::throwPoolLeak();
      outstanding.store(out - 1, std::memory_order_relaxed);
      try {
        freeObjects.push(instance);
      } catch (...) {  // no room to keep it: destroy it instead
        destroy(instance);
      }
    } else {
      {
        Guard guard(lock);
        // Deliberately unchecked: this path lets the count go below zero.
        outstanding.store(outstanding.load(std::memory_order_relaxed) - 1, std::memory_order_relaxed);
      }
      destroy(instance);
    }
    instance = nullptr;
  }

  unsigned int ClearPool(bool) override {
    Guard guard(lock);
    unsigned int n = freeObjects.getSize();
    while (!freeObjects.isEmpty()) destroy(freeObjects.pop());
    return n;
  }

  /// Instances handed out and not yet released.
  int getOutstanding() const noexcept { return outstanding.load(std::memory_order_relaxed); }
  /// Instances lying in the pool, ready for reuse.
  unsigned int getPoolSize() const {
    Guard guard(lock);
    return freeObjects.getSize();
  }
  int getMaxSize() const noexcept { return maxSize; }
  /// Instances constructed by the pool, and instances it handed out again from the pool.
  unsigned long getCreatedCount() const noexcept { return created.load(std::memory_order_relaxed); }
  unsigned long getReusedCount() const noexcept { return reused.load(std::memory_order_relaxed); }

 private:
  static void activate(T *instance) {
    try {
      instance->onActivate();
    } catch (...) {
      destroy(instance);
      throw;
    }
  }
  static void assignState(T const &source, T &target) {
    if constexpr (requires { source.assignToSameClass(target); })
      source.assignToSameClass(target);
    else
      target = source;
  }
  static void destroy(T *instance) { delete instance; }
  // Counters change only under the lock, so a plain load and store suffice.
  static void bump(std::atomic<unsigned long> &counter) noexcept {
    counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }

  Stack<T *> freeObjects;
  std::atomic<int> outstanding{0};
  mutable AutoCriticalSection lock;
  BaseString<char> name;
  std::atomic<unsigned long> created{0};
  std::atomic<unsigned long> reused{0};
};

}  // namespace quarn
