// PooledClassImp.h - the class object of a pooled class
//
// Released instances are kept and handed out again, last released first.
// Acquire: take a free instance and activate it (onActivate), or construct a
// new T; count the instance as outstanding. Release: deactivate it
// (onDeactivate, with no pool lock held, so that an instance may release
// nested instances into the same pool) and keep it, unless pools are switched
// off (Object::m_dontUsePools) or `maxSize` instances or more are still
// outstanding, in which case it is destroyed. The bound counts instances
// handed out, not instances lying in the pool: with maxSize 50, a released
// instance is kept only while fewer than 50 are out. maxSize -1 means no bound.
//
// Releasing into a pool with no instance outstanding throws "Object leak,
// object being returned to pool when none were outstanding..." and leaves the
// instance with the caller.
//
// Pools are safe to use from several threads. An unbounded pool gives each
// thread a cache of free instances, so that a thread's acquire and release
// take only its own cache's lock (one lock pair per operation) and threads do
// not contend; the count of instances out stays exact (see PoolCore.h). A
// bounded pool keeps one shared stack under the pool's lock, so that its
// bound is tested against the exact count.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/Object.h>
#include <quarn/core/PoolCore.h>
#include <quarnCore/CriticalSection.h>
#include <quarnCore/Exception.h>

namespace quarn {

template <class T, int maxSize>
class QUARN_API PooledClassImp : public ClassImp<T> {
 public:
  PooledClassImp() : core(maxSize, &destroy), name(this->tag.getName()) {}
  ~PooledClassImp() override { ClearPool(true); }

  /// A recycled (activated) instance, or a new one.
  T *acquire() {
    return take([] { return new T(); }, [](T *, detail::PoolThreadCache *) {});
  }

  /// A recycled instance given the state of `source` (the class's assignment),
  /// or a copy-constructed new one. A copy constructor that throws anything but
  /// a quarn exception is reported as "Error when calling class copy constructor.".
  T *acquireCopy(T const &source) {
    return take([&] { return copyConstruct(source); },
                [&](T *instance, detail::PoolThreadCache *cache) { assignOrDrop(source, instance, cache); });
  }

  /// Hands `instance` back (pooled or destroyed) and sets the caller's pointer to null.
  void release(T *&instance) {
    bool pooling = !Object::m_dontUsePools;
    if constexpr (kCached) {
      if (pooling) [[likely]] {
        if (detail::PoolThreadCache *cache = core.threadCache()) [[likely]] {
          instance->onDeactivate();
          if (!cache->push(instance, core.baseKnown())) [[unlikely]]
            core.releaseSlow(*cache, instance);
          instance = nullptr;
          return;
        }
      }
    }
    if (pooling && (maxSize == -1 || getOutstanding() < maxSize)) {
      instance->onDeactivate();
      bool kept;
      {
        Guard guard(core.lock());
        core.takeCredit(nullptr);
        kept = core.pushShared(instance);
      }
      if (!kept) destroy(instance);  // no room to keep it
    } else {
      {
        Guard guard(core.lock());
        core.addBase(-1);  // deliberately unchecked: this path lets the count go below zero
      }
      destroy(instance);
    }
    instance = nullptr;
  }

  unsigned int ClearPool(bool) override { return core.clear(); }

  /// Instances handed out and not yet released.
  int getOutstanding() const noexcept { return core.getOutstanding(); }
  /// Instances lying in the pool (shared and in the threads' caches), ready for reuse.
  unsigned int getPoolSize() const noexcept { return core.getPoolSize(); }
  int getMaxSize() const noexcept { return maxSize; }
  /// Instances constructed by the pool, and instances it handed out again from the pool.
  unsigned long getCreatedCount() const noexcept { return core.getCreatedCount(); }
  unsigned long getReusedCount() const noexcept { return core.getReusedCount(); }

 private:
  static constexpr bool kCached = maxSize == -1;

  /// Acquires through the thread's cache, or the shared stack when there is
  /// none: a free instance is activated and given to `recycle`, else `fresh`
  /// makes one. Either may throw; nothing is counted then.
  template <class Fresh, class Recycle>
  T *take(Fresh fresh, Recycle recycle) {
    if constexpr (kCached) {
      if (detail::PoolThreadCache *cache = core.threadCache()) [[likely]] {
        void *free = cache->pop();
        if (!free) [[unlikely]]
          free = core.refill(*cache);
        if (free) [[likely]] {
          T *instance = activate(static_cast<T *>(free), cache);
          recycle(instance, cache);
          return instance;
        }
        T *instance = fresh();
        cache->adjust(1, 1, 0);
        return instance;
      }
    }
    Guard guard(core.lock());
    T *instance;
    if (void *free = core.popShared()) {
      instance = activate(static_cast<T *>(free), nullptr);
      recycle(instance, nullptr);
      core.countReused();
    } else {
      instance = fresh();
      core.countCreated();
    }
    core.addBase(1);
    return instance;
  }
  /// Runs onActivate on a free instance; if it throws, the instance is
  /// destroyed and the credit that `cache` took for it is given back.
  T *activate(T *instance, detail::PoolThreadCache *cache) {
    try {
      instance->onActivate();
    } catch (...) {
      if (cache) core.dropCredit(*cache);
      destroy(instance);
      throw;
    }
    return instance;
  }
  void assignOrDrop(T const &source, T *instance, detail::PoolThreadCache *cache) {
    if (instance == &source) return;
    try {
      if constexpr (requires { source.assignToSameClass(*instance); })
        source.assignToSameClass(*instance);
      else
        *instance = source;
    } catch (...) {
      if (cache) core.dropCredit(*cache);
      destroy(instance);
      throw;
    }
  }
  static T *copyConstruct(T const &source) {
    try {
      return new T(source);
    } catch (Exception const &) {
      throw;
    } catch (...) {
      detail::throwCopyConstructorError();
    }
  }
  static void destroy(void *instance) { delete static_cast<T *>(instance); }

  detail::PoolCore core;
  BaseString<char> name;
};

}  // namespace quarn
