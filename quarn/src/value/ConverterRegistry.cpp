// ConverterRegistry.cpp - queued registration and locked lookup of value converters
#include <quarn/value/ConverterRegistry.h>
#include <quarn/value/ValueTypeConverter.h>

#include <atomic>

namespace quarn::detail {

namespace {

// Set when the process registry is destroyed at unload. A plain flag that is
// constant-initialised, so it can be read at any point of start-up or
// shut-down, including after the registry itself is gone.
std::atomic<bool> g_unloaded{false};

// The process registry, made by the first registration. Converters register
// while they are constructed, so every converter that registered is destroyed
// (and unregisters) before this object is.
struct ProcessRegistry {
  ConverterRegistry registry;
  ~ProcessRegistry() { g_unloaded.store(true, std::memory_order_release); }
};

}  // namespace

ConverterRegistry::ConverterRegistry() noexcept = default;
ConverterRegistry::~ConverterRegistry() = default;

ConverterRegistry *ConverterRegistry::process() noexcept {
  if (g_unloaded.load(std::memory_order_acquire)) [[unlikely]]
    return nullptr;
  static ProcessRegistry instance;
  return &instance.registry;
}

unsigned int ConverterRegistry::keyHash(ClassTag const &from, ClassTag const &to) noexcept {
  return ClassTag::hashName(from.getName()) ^ ClassTag::hashName(to.getName());
}

ConverterRegistry::Key ConverterRegistry::makeKey(ClassTag const &from, ClassTag const &to) noexcept {
  return Key{from.getId(), to.getId(), keyHash(from, to)};
}

void ConverterRegistry::enqueue(ClassTag const &from, ClassTag const &to, ValueTypeConverter *converter) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_pending.append(Pending{makeKey(from, to), converter});
}

ValueTypeConverter *ConverterRegistry::find(ClassTag const &from, ClassTag const &to) {
  Key key = makeKey(from, to);
  std::lock_guard<std::mutex> lock(m_mutex);
  applyPending();
  ValueTypeConverter **found = m_map->find(key);
  return found ? *found : nullptr;
}

void ConverterRegistry::applyPending() {
  if (!m_map) m_map = std::make_unique<Map>(31);
  // Records are consumed one by one, so a failure (out of memory) leaves the
  // rest queued for the next lookup.
  unsigned int done = 0;
  struct Consume {
    Array<Pending> &pending;
    unsigned int &done;
    ~Consume() {
      if (done == pending.getSize()) {
        pending.clear();
      } else {
        for (unsigned int i = 0; i < done; ++i) pending.remove(0);
      }
    }
  } consume{m_pending, done};
  for (; done < m_pending.getSize(); ++done) {
    Pending const &record = m_pending[done];
    if (record.converter)
      m_map->put(record.key, record.converter);
    else
      m_map->remove(record.key);
  }
}

unsigned int ConverterRegistry::getBucketCount() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_map ? m_map->getBucketCount() : 0;
}

unsigned int ConverterRegistry::getCount() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_map ? m_map->getCount() : 0;
}

unsigned int ConverterRegistry::getPendingCount() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_pending.getSize();
}

}  // namespace quarn::detail
