// PoolTest.cpp - the acquire / release protocol of pooled class objects
#include <quarn/core/Class.h>
#include <quarn/core/Object.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/PooledObject.h>
#include <quarnCore/Exception.h>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"

namespace {

// Atomic: onDeactivate runs outside the pool's lock.
struct Counts {
  std::atomic<int> constructed{0}, copied{0}, destroyed{0}, activated{0}, deactivated{0}, assigned{0};
  void reset() {
    for (auto *c : {&constructed, &copied, &destroyed, &activated, &deactivated, &assigned}) c->store(0);
  }
};

// A pooled class that counts what the pool does to it. `Limit` is the pool bound.
template <int Limit>
class Probe : public quarn::Object, public quarn::PooledObject {
 public:
  static inline Counts counts;
  static quarn::ClassTagDecl const Tag;
  static quarn::PooledClassImp<Probe, Limit> m_class;

  Probe() { ++counts.constructed; }
  Probe(Probe const &other) : quarn::Object(other), quarn::PooledObject(other), value(other.value) {
    if (other.value == -1) throw std::runtime_error("not a library exception");
    if (other.value == -2) throw quarn::Exception("library exception from copy");
    ++counts.copied;
  }
  ~Probe() override { ++counts.destroyed; }

  static Probe *newInstance() { return m_class.acquire(); }
  Probe *cloneProbe() const { return m_class.acquireCopy(*this); }
  void deleteInstance() override {
    Probe *self = this;
    m_class.release(self);
  }
  quarn::ClassTag const &getClassTag() const override { return Tag; }
  quarn::Class const &getClass() const override { return m_class; }
  void onActivate() override { ++counts.activated; }
  void onDeactivate() override { ++counts.deactivated; }
  void assignToSameClass(Probe &target) const {
    ++counts.assigned;
    target.value = value;
  }

  int value = 0;
};

template <>
quarn::ClassTagDecl const Probe<-1>::Tag("Marlix.test.PoolProbe");
template <>
quarn::PooledClassImp<Probe<-1>, -1> Probe<-1>::m_class{};
template <>
quarn::ClassTagDecl const Probe<3>::Tag("Marlix.test.BoundedPoolProbe");
template <>
quarn::PooledClassImp<Probe<3>, 3> Probe<3>::m_class{};

using Unbounded = Probe<-1>;
using Bounded = Probe<3>;

class PoolTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Unbounded::m_class.ClearPool(false);
    Bounded::m_class.ClearPool(false);
    Unbounded::counts.reset();
    Bounded::counts.reset();
  }
  void TearDown() override { quarn::Object::m_dontUsePools = false; }
};

TEST_F(PoolTest, ReleasedInstancesAreReusedLastInFirstOut) {
  Unbounded *a = Unbounded::newInstance(), *b = Unbounded::newInstance();
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 2);
  a->deleteInstance();
  b->deleteInstance();
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 0);
  EXPECT_EQ(Unbounded::m_class.getPoolSize(), 2u);
  Unbounded *x = Unbounded::newInstance(), *y = Unbounded::newInstance();
  EXPECT_EQ(x, b);
  EXPECT_EQ(y, a);
  EXPECT_EQ(Unbounded::counts.constructed, 2);
  EXPECT_EQ(Unbounded::counts.deactivated, 2);
  EXPECT_EQ(Unbounded::counts.activated, 2);
  x->deleteInstance();
  y->deleteInstance();
  EXPECT_EQ(Unbounded::m_class.ClearPool(false), 2u);  // clearing destroys the free instances
  EXPECT_EQ(Unbounded::counts.destroyed, 2);
  Bounded::newInstance()->deleteInstance();
  quarn::Class::clearAllClassPools();
  EXPECT_EQ(Bounded::m_class.getPoolSize(), 0u);
}

TEST_F(PoolTest, SwitchedOffPoolsDestroyReleasedInstances) {
  quarn::Object::m_dontUsePools = true;
  Unbounded::newInstance()->deleteInstance();
  EXPECT_EQ(Unbounded::counts.destroyed, 1);
  EXPECT_EQ(Unbounded::counts.deactivated, 0);
  EXPECT_EQ(Unbounded::m_class.getPoolSize(), 0u);
  Unbounded::newInstance()->deleteInstance();
  EXPECT_EQ(Unbounded::counts.constructed, 2);
}

TEST_F(PoolTest, SurplusReleaseIsReportedAsLeak) {
  Unbounded *p = Unbounded::newInstance();
  Unbounded *stray = new Unbounded();  // never acquired from the pool
  p->deleteInstance();
  Unbounded *keep = stray;
  EXPECT_QUARN_THROW(Unbounded::m_class.release(stray),
                     "Object leak, object being returned to pool when none were outstanding...");
  EXPECT_EQ(stray, keep);  // left with the caller, neither pooled nor freed
  EXPECT_EQ(Unbounded::m_class.getPoolSize(), 1u);
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 0);
  delete stray;
}

TEST_F(PoolTest, BoundCountsInstancesStillOut) {
  Bounded *out[3] = {Bounded::newInstance(), Bounded::newInstance(), Bounded::newInstance()};
  struct Step {
    int destroyed;
    unsigned int pooled;
  } const steps[] = {{1, 0}, {1, 1}, {1, 2}};
  for (int i = 0; i < 3; ++i) {  // 3 out: 3 is not below 3, destroyed; then pooled
    out[i]->deleteInstance();
    EXPECT_EQ(Bounded::counts.destroyed, steps[i].destroyed) << i;
    EXPECT_EQ(Bounded::m_class.getPoolSize(), steps[i].pooled) << i;
  }
  EXPECT_EQ(Bounded::m_class.getOutstanding(), 0);
}

TEST_F(PoolTest, CloneRecyclesAndAssignsOrCopyConstructs) {
  Unbounded *source = Unbounded::newInstance();
  source->value = 42;
  Unbounded *copy = source->cloneProbe();  // pool empty: copy-constructed
  EXPECT_EQ(copy->value, 42);
  EXPECT_EQ(Unbounded::counts.copied, 1);
  copy->deleteInstance();
  Unbounded *recycled = source->cloneProbe();  // from the pool, given the state
  EXPECT_EQ(recycled, copy);
  EXPECT_EQ(recycled->value, 42);
  EXPECT_EQ(Unbounded::counts.assigned, 1);
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 2);
  recycled->deleteInstance();
  Unbounded::m_class.ClearPool(false);  // with the pool empty, a failing copy constructor changes nothing
  source->value = -1;
  EXPECT_QUARN_THROW(source->cloneProbe(), "Error when calling class copy constructor.");
  source->value = -2;
  EXPECT_QUARN_THROW(source->cloneProbe(), "library exception from copy");
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 1);
  source->deleteInstance();
}

TEST_F(PoolTest, LookupByTagCreatesThroughBoundClassAndStatisticsAreEmptyByDefault) {
  quarn::BaseString<unsigned short> report("stale"), name;
  quarn::Class::debugAllClassPools(report);
  EXPECT_FALSE(report.isNull());
  EXPECT_EQ(report.getLength(), 0u);
  int a = 0, b = 0, c = 0, d = 77;
  EXPECT_FALSE(Unbounded::m_class.getPoolDebugInfo(name, a, b, c, d));
  EXPECT_EQ(name, quarn::BaseString<unsigned short>("Marlix.test.PoolProbe"));
  EXPECT_EQ(a, -1);
  EXPECT_EQ(c, -1);
  EXPECT_EQ(d, 77);  // the fourth number is left alone
  quarn::Object *made = quarn::Class::getClassInstance(quarn::ClassTag("marlix.test.poolprobe"));
  EXPECT_EQ(made->getClassTag(), Unbounded::Tag);
  made->deleteInstance();
  EXPECT_EQ(&quarn::Class::getClass(Unbounded::Tag), &Unbounded::m_class);
  quarn::ClassTag unknown("Marlix.test.NobodyServesThis");
  EXPECT_EQ(quarn::Class::findClass(unknown), nullptr);
  EXPECT_QUARN_THROW(quarn::Class::getClass(unknown), quarn::test::notRegistered("Marlix.test.NobodyServesThis"));
}

TEST_F(PoolTest, ConcurrentAcquireAndReleaseKeepCountsExact) {
  constexpr int kThreads = 4, kRounds = 20000, kHeld = 8;
  unsigned long createdBefore = Unbounded::m_class.getCreatedCount();
  unsigned long reusedBefore = Unbounded::m_class.getReusedCount();
  std::vector<std::jthread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([] {
      Unbounded *held[kHeld];
      for (int r = 0; r < kRounds; ++r) {
        for (auto &p : held) p = Unbounded::newInstance();
        for (auto &p : held) p->deleteInstance();
      }
    });
  threads.clear();  // joins
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 0);
  unsigned int pooled = Unbounded::m_class.getPoolSize();
  EXPECT_LE(pooled, static_cast<unsigned int>(kThreads * kHeld));
  unsigned long created = Unbounded::m_class.getCreatedCount() - createdBefore;
  unsigned long reused = Unbounded::m_class.getReusedCount() - reusedBefore;
  EXPECT_EQ(created, static_cast<unsigned long>(Unbounded::counts.constructed.load()));
  EXPECT_EQ(created, pooled);  // nothing destroyed: every instance made is back in the pool
  EXPECT_EQ(created + reused, static_cast<unsigned long>(kThreads) * kRounds * kHeld);
  EXPECT_EQ(Unbounded::counts.activated.load(), static_cast<int>(reused));
}

// Instances taken on one thread and handed back on another (a pipeline's
// producer and consumer) are counted exactly while both threads live, and a
// thread's free instances are reachable by ClearPool from any thread.
TEST_F(PoolTest, InstancesCrossThreadsWithExactCountsAndClearing) {
  constexpr int kMade = 8;
  Unbounded *made[kMade];
  std::latch produced(1), consumed(1), cached(1), cleared(1);
  std::jthread producer([&] {
    for (auto &p : made) p = Unbounded::newInstance();
    produced.count_down();
    consumed.wait();
    Unbounded::newInstance()->deleteInstance();  // cached on this thread
    cached.count_down();
    cleared.wait();
  });
  produced.wait();
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), kMade);
  for (auto &p : made) p->deleteInstance();  // released here, taken there
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 0);
  Unbounded *stray = new Unbounded();
  EXPECT_QUARN_THROW(Unbounded::m_class.release(stray),
                     "Object leak, object being returned to pool when none were outstanding...");
  delete stray;
  EXPECT_EQ(Unbounded::m_class.ClearPool(false), static_cast<unsigned int>(kMade));
  consumed.count_down();
  cached.wait();
  EXPECT_EQ(Unbounded::m_class.getPoolSize(), 1u);  // lying in the producer's cache
  EXPECT_EQ(Unbounded::m_class.ClearPool(false), 1u);
  EXPECT_EQ(Unbounded::counts.destroyed, kMade + 2);  // the stray too
  cleared.count_down();
  producer.join();
  EXPECT_EQ(Unbounded::m_class.getOutstanding(), 0);
  EXPECT_EQ(Unbounded::m_class.getPoolSize(), 0u);
}

}  // namespace
