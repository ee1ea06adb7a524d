// PoolCore.cpp - the slow paths of pools: refilling and spilling caches, credit, clearing, thread exit
#include <quarn/core/PoolCore.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <new>

#include <pthread.h>

#include <quarn/core/Class.h>

namespace quarn::detail {

constinit thread_local ThreadPoolCaches t_poolCaches{nullptr, 0};

namespace {

std::atomic<unsigned int> g_nextIndex{0};
// Orders a thread's end against the destruction of the pools its caches belong to.
constinit std::mutex g_lifetime;
constinit thread_local bool t_threadEnded = false;

/// At the end of a thread, hands its caches back to their pools.
void retireThread() noexcept {
  t_threadEnded = true;
  // Taken out of sight first: destructors run below may release instances on this thread.
  ThreadPoolCaches table = t_poolCaches;
  t_poolCaches = ThreadPoolCaches{nullptr, 0};
  {
    std::lock_guard<std::mutex> lifetime(g_lifetime);
    for (unsigned int i = 0; i < table.size; ++i) {
      PoolThreadCache *cache = table.slots[i];
      if (cache == nullptr) continue;
      if (cache->owner) cache->owner->retire(cache);
      delete cache;
    }
  }
  std::free(table.slots);
}

// A thread's caches are handed back when it ends through a thread-specific key
// rather than a thread_local destructor, which would keep libquarn loaded for
// as long as any thread that used a pool is alive. When libquarn is unloaded
// (or the process ends), the key goes, and the unloading thread's caches are
// handed back first, while the pools still exist: the key is made on first
// use, after the class objects, so it is destroyed before them.
struct ThreadEndKey {
  pthread_key_t key{};
  bool made = pthread_key_create(&key, [](void *) { retireThread(); }) == 0;
  ~ThreadEndKey() {
    retireThread();
    if (made) pthread_key_delete(key);
  }
};

/// Makes sure retireThread runs when the calling thread ends; false when it cannot.
bool watchThreadEnd() noexcept {
  static ThreadEndKey threadEnd;
  return threadEnd.made && pthread_setspecific(threadEnd.key, &t_poolCaches) == 0;
}

}  // namespace

void PoolThreadCache::lockContended() noexcept {
  for (unsigned int attempt = 0;; ++attempt) {
    if (!m_locked.load(std::memory_order_relaxed) && !m_locked.exchange(true, std::memory_order_acquire)) return;
    backOff(attempt);
  }
}

PoolCore::PoolCore(int maxSize, Destroy destroy) noexcept
    : m_maxSize(maxSize), m_index(g_nextIndex.fetch_add(1, std::memory_order_relaxed)), m_destroy(destroy) {}

PoolCore::~PoolCore() {
  std::lock_guard<std::mutex> lifetime(g_lifetime);
  Guard guard(m_lock);
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) {
    cache->lock();
    unsigned int n = cache->count.load(std::memory_order_relaxed);
    cache->count.store(0, std::memory_order_relaxed);
    cache->owner = nullptr;
    cache->unlock();
    for (unsigned int i = 0; i < n; ++i) m_destroy(cache->slots[i]);  // released after the pool was cleared
  }
  m_caches = nullptr;
}

PoolThreadCache *PoolCore::attachThread() noexcept {
  if (m_maxSize != -1 || t_threadEnded) return nullptr;
  ThreadPoolCaches &table = t_poolCaches;
  if (m_index >= table.size) {
    unsigned int size = std::max({m_index + 1, table.size * 2, 16u});
    auto *slots = static_cast<PoolThreadCache **>(std::calloc(size, sizeof(PoolThreadCache *)));
    if (slots == nullptr) return nullptr;
    if (table.slots == nullptr && !watchThreadEnd()) {  // nobody would hand the caches back: stay on the shared path
      std::free(slots);
      return nullptr;
    }
    std::copy_n(table.slots, table.size, slots);
    std::free(table.slots);
    table.slots = slots;
    table.size = size;
  }
  auto *cache = new (std::nothrow) PoolThreadCache;
  if (cache == nullptr) return nullptr;
  cache->owner = this;
  {
    Guard guard(m_lock);
    cache->next = m_caches;
    m_caches = cache;
  }
  table.slots[m_index] = cache;
  return cache;
}

void PoolCore::retire(PoolThreadCache *cache) noexcept {
  void *homeless[PoolThreadCache::kCapacity];
  unsigned int lost = 0;
  {
    Guard guard(m_lock);
    cache->lock();
    unsigned int n = cache->count.load(std::memory_order_relaxed);
    for (unsigned int i = 0; i < n; ++i)
      if (!pushShared(cache->slots[i])) homeless[lost++] = cache->slots[i];
    cache->count.store(0, std::memory_order_relaxed);
    addBase(cache->credit.exchange(0, std::memory_order_relaxed));
    m_created.fetch_add(cache->created.exchange(0, std::memory_order_relaxed), std::memory_order_relaxed);
    m_reused.fetch_add(cache->reused.exchange(0, std::memory_order_relaxed), std::memory_order_relaxed);
    cache->owner = nullptr;
    cache->unlock();
    for (PoolThreadCache **link = &m_caches; *link; link = &(*link)->next) {
      if (*link == cache) {
        *link = cache->next;
        break;
      }
    }
  }
  for (unsigned int i = 0; i < lost; ++i) m_destroy(homeless[i]);
}

void *PoolCore::popShared() noexcept {
  if (m_free.isEmpty()) return nullptr;
  return m_free.pop();
}

bool PoolCore::pushShared(void *instance) noexcept {
  try {
    m_free.push(instance);
    return true;
  } catch (...) {
    return false;
  }
}

void *PoolCore::refill(PoolThreadCache &cache) {
  Guard guard(m_lock);
  unsigned int available = m_free.getSize();
  if (available == 0) return nullptr;
  cache.lock();
  unsigned int n = cache.count.load(std::memory_order_relaxed);
  unsigned int k = std::min({available, PoolThreadCache::kCapacity / 2, PoolThreadCache::kCapacity - n});
  // The top of the shared stack becomes the top of the cache: last released, first reused.
  for (unsigned int i = 0; i < k; ++i) cache.slots[n + k - 1 - i] = m_free.pop();
  cache.count.store(n + k, std::memory_order_relaxed);
  cache.unlock();
  return cache.pop();
}

void PoolCore::takeCredit(PoolThreadCache *own) {
  int base = getBase();
  if (base > 0) {
    addBase(-1);
    return;
  }
  if (base == 0) {
    // With the shared count at zero and no credit below zero, any credit found stands for an instance out.
    if (own) {
      own->lock();
      int credit = own->credit.load(std::memory_order_relaxed);
      if (credit > 0) own->credit.store(credit - 1, std::memory_order_relaxed);
      own->unlock();
      if (credit > 0) return;
    }
    for (PoolThreadCache *other = m_caches; other; other = other->next) {
      if (other == own) continue;
      other->lock();
      int credit = other->credit.load(std::memory_order_relaxed);
      int borrowed = (credit + 1) / 2;
      if (credit > 0) other->credit.store(credit - borrowed, std::memory_order_relaxed);
      other->unlock();
      if (credit > 0) {
        if (own)
          own->adjust(borrowed - 1, 0, 0);
        else
          addBase(borrowed - 1);
        return;
      }
    }
  }
  // No credit found one cache at a time (credit may move while looking), or the
  // shared count is below zero: decide on the exact count, every cache locked.
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) cache->lock();
  long total = getBase();
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) total += cache->credit.load(std::memory_order_relaxed);
  if (total != 0) {
    // Settle credit against a shared count below zero, then take one instance off the count.
    for (PoolThreadCache *cache = m_caches; cache && getBase() < 0; cache = cache->next) {
      int credit = cache->credit.load(std::memory_order_relaxed);
      int settled = std::min(credit, -getBase());
      cache->credit.store(credit - settled, std::memory_order_relaxed);
      addBase(settled);
    }
    addBase(-1);  // may go below zero, as the unchecked release lets it
  }
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) cache->unlock();
  if (total == 0) throwPoolLeak();
}

void PoolCore::releaseSlow(PoolThreadCache &cache, void *instance) {
  bool kept = true;
  {
    Guard guard(m_lock);
    takeCredit(&cache);
    cache.lock();
    unsigned int n = cache.count.load(std::memory_order_relaxed);
    if (n == PoolThreadCache::kCapacity) {
      // Spill the older half to the shared stack, oldest first, so that the order of reuse is kept.
      unsigned int moved = 0;
      while (moved < PoolThreadCache::kCapacity / 2 && pushShared(cache.slots[moved])) ++moved;
      std::copy(cache.slots + moved, cache.slots + n, cache.slots);
      n -= moved;
    }
    if (n < PoolThreadCache::kCapacity)
      cache.slots[n++] = instance;
    else
      kept = false;  // no room anywhere: destroy it instead
    cache.count.store(n, std::memory_order_relaxed);
    cache.unlock();
  }
  if (!kept) m_destroy(instance);
}

void PoolCore::dropCredit(PoolThreadCache &cache) noexcept {
  Guard guard(m_lock);
  try {
    takeCredit(&cache);
  } catch (...) {  // nothing to take: the count is already as it should be
  }
}

void *PoolCore::takeAny() noexcept {
  Guard guard(m_lock);
  if (void *instance = popShared()) return instance;
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) {
    cache->lock();
    unsigned int n = cache->count.load(std::memory_order_relaxed);
    void *instance = n ? cache->slots[n - 1] : nullptr;
    if (n) cache->count.store(n - 1, std::memory_order_relaxed);
    cache->unlock();
    if (instance) return instance;
  }
  return nullptr;
}

unsigned int PoolCore::clear() {
  unsigned int n = 0;
  while (void *instance = takeAny()) {
    m_destroy(instance);
    ++n;
  }
  return n;
}

int PoolCore::getOutstanding() const noexcept {
  Guard guard(m_lock);
  int total = getBase();
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) total += cache->credit.load(std::memory_order_relaxed);
  return total;
}

unsigned int PoolCore::getPoolSize() const noexcept {
  Guard guard(m_lock);
  unsigned int total = m_free.getSize();
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) total += cache->count.load(std::memory_order_relaxed);
  return total;
}

unsigned long PoolCore::getCreatedCount() const noexcept {
  Guard guard(m_lock);
  unsigned long total = m_created.load(std::memory_order_relaxed);
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) total += cache->created.load(std::memory_order_relaxed);
  return total;
}

unsigned long PoolCore::getReusedCount() const noexcept {
  Guard guard(m_lock);
  unsigned long total = m_reused.load(std::memory_order_relaxed);
  for (PoolThreadCache *cache = m_caches; cache; cache = cache->next) total += cache->reused.load(std::memory_order_relaxed);
  return total;
}

}  // namespace quarn::detail
