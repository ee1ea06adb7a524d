// LeakDetector.cpp - the per-class counters and the process-wide list of detectors
#include <quarnCore/LeakDetector.h>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <unordered_set>
#include <vector>

namespace quarn {

struct LeakDetector::Tracking {
  std::mutex mutex;
  std::unordered_set<void *> instances;
};

namespace {
// The list of detectors is never destroyed: detectors of other libraries may
// unregister from it during process exit in any order.
struct DetectorList {
  std::mutex mutex;
  std::vector<LeakDetector *> detectors;
};
DetectorList &detectorList() {
  static DetectorList *list = new DetectorList;
  return *list;
}
}  // namespace

LeakDetector::LeakDetector(char const *name, bool trackInstances) : m_name(name) {
  if (trackInstances) m_tracking = std::make_unique<Tracking>();
  registerSelf();
}

LeakDetector::LeakDetector(unsigned short const *name, bool trackInstances) {
  if (name)
    for (; *name; ++name) m_name.append(static_cast<char>(*name > 0xFF ? '?' : *name));
  if (trackInstances) m_tracking = std::make_unique<Tracking>();
  registerSelf();
}

void LeakDetector::registerSelf() {
  DetectorList &list = detectorList();
  std::lock_guard lock(list.mutex);
  list.detectors.push_back(this);
}

LeakDetector::~LeakDetector() {
  DetectorList &list = detectorList();
  std::lock_guard lock(list.mutex);
  list.detectors.erase(std::remove(list.detectors.begin(), list.detectors.end(), this), list.detectors.end());
}

void LeakDetector::SetName(char const *name) {
  DetectorList &list = detectorList();
  std::lock_guard lock(list.mutex);
  m_name = name;
}

BaseString<char> LeakDetector::getName() const {
  DetectorList &list = detectorList();
  std::lock_guard lock(list.mutex);
  return m_name.isNull() ? BaseString<char>("") : m_name;
}

void LeakDetector::Add(void *instance, char const *className) {
  m_live.fetch_add(1, std::memory_order_relaxed);
  if (className && m_name.isEmpty()) SetName(className);
  if (m_tracking) {
    std::lock_guard lock(m_tracking->mutex);
    try {
      m_tracking->instances.insert(instance);
    } catch (...) {  // tracking is best effort: the count stays right
    }
  }
}

void LeakDetector::Add(void *instance, unsigned short const *className) {
  BaseString<char> narrow;
  if (className && m_name.isEmpty()) {
    for (; *className; ++className) narrow.append(static_cast<char>(*className > 0xFF ? '?' : *className));
    Add(instance, narrow.getBuffer());
  } else {
    Add(instance, static_cast<char const *>(nullptr));
  }
}

void LeakDetector::Sub(void *instance) {
  m_live.fetch_sub(1, std::memory_order_relaxed);
  if (m_tracking) {
    std::lock_guard lock(m_tracking->mutex);
    m_tracking->instances.erase(instance);
  }
}

unsigned int LeakDetector::report(BaseString<unsigned short> &out) {
  DetectorList &list = detectorList();
  std::lock_guard lock(list.mutex);
  unsigned int found = 0;
  char line[64];
  for (LeakDetector *d : list.detectors) {
    long live = d->getLiveCount();
    if (live == 0) continue;
    ++found;
    out.appendAscii(d->m_name.isEmpty() ? "(unnamed)" : d->m_name.getBuffer());
    std::snprintf(line, sizeof line, ": %ld live\n", live);
    out.appendAscii(line);
    if (d->m_tracking) {
      std::lock_guard trackLock(d->m_tracking->mutex);
      for (void *p : d->m_tracking->instances) {
        std::snprintf(line, sizeof line, "  at %p\n", p);
        out.appendAscii(line);
      }
    }
  }
  return found;
}

long LeakDetector::getTotalLiveCount() {
  DetectorList &list = detectorList();
  std::lock_guard lock(list.mutex);
  long total = 0;
  for (LeakDetector *d : list.detectors) total += d->getLiveCount();
  return total;
}

}  // namespace quarn
