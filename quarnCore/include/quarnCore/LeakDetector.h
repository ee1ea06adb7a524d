// LeakDetector.h - live-instance counts per class, for leak reports
//
// Every class of the object model owns one LeakDetector and reports each of
// its instances to it: Add when an instance is made, Sub when it is destroyed.
// The counts are atomic and cheap. A detector made with `trackInstances` also
// remembers which instances are alive (under a lock), so that a report can
// list their addresses. A host asks LeakDetector::report() for every class
// with live instances, for example at shutdown. A detector is a diagnostic: it
// changes no behaviour and never throws from Add or Sub.
#pragma once

#include <atomic>
#include <memory>

#include <quarnCore/BaseString.h>
#include <quarnCore/Export.h>

namespace quarn {

class QUARN_CORE_API LeakDetector {
 public:
  explicit LeakDetector(char const *name = nullptr, bool trackInstances = false);
  explicit LeakDetector(unsigned short const *name, bool trackInstances = false);
  ~LeakDetector();
  LeakDetector(LeakDetector const &) = delete;
  LeakDetector &operator=(LeakDetector const &) = delete;

  /// Names the detector (the class name a report shows).
  void SetName(char const *name);
  /// Counts `instance` as alive; `className` names the detector if it has no name yet.
  void Add(void *instance, char const *className);
  void Add(void *instance, unsigned short const *className);
  /// Counts `instance` as gone.
  void Sub(void *instance);

  /// Instances added and not yet subtracted.
  long getLiveCount() const noexcept { return m_live.load(std::memory_order_relaxed); }
  /// The detector's name (empty when it has none).
  BaseString<char> getName() const;

  /// Appends one line per detector with live instances ("<name>: <n> live"),
  /// followed by the tracked addresses when the detector tracks instances.
  /// Returns the number of such detectors.
  static unsigned int report(BaseString<unsigned short> &out);
  /// The sum of the live counts of every detector in the process.
  static long getTotalLiveCount();

 private:
  struct Tracking;
  void registerSelf();
  std::atomic<long> m_live{0};
  BaseString<char> m_name;
  std::unique_ptr<Tracking> m_tracking;
};

}  // namespace quarn
