// CriticalSectionTest.cpp - Guard excludes other threads, nests, and UnGuard lends the lock out
#include <quarnCore/CriticalSection.h>

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using quarn::AutoCriticalSection;
using quarn::Guard;
using quarn::UnGuard;

/// Whether another thread can take `lock` right now.
bool freeForOthers(quarn::Lockable &lock) {
  bool taken = false;
  std::thread([&] {
    taken = lock.tryLock();
    if (taken) lock.unlock();
  }).join();
  return taken;
}

TEST(CriticalSectionTest, GuardMakesUpdatesExclusive) {
  AutoCriticalSection lock;
  long total = 0;  // plain: only the guard protects it
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([&] {
        for (int i = 0; i < 20000; ++i) {
          Guard outer(lock), inner(lock);  // re-entrant
          ++total;
        }
      });
  }  // joined
  EXPECT_EQ(total, 80000);
}

TEST(CriticalSectionTest, UnGuardReleasesForItsScopeOnly) {
  quarn::ForcedCriticalSection lock;
  EXPECT_TRUE(freeForOthers(lock));
  {
    Guard guard(lock);
    EXPECT_FALSE(freeForOthers(lock));
    {
      UnGuard unguard(lock);
      EXPECT_TRUE(freeForOthers(lock));
    }
    EXPECT_FALSE(freeForOthers(lock));
  }
  EXPECT_TRUE(freeForOthers(lock));
}

}  // namespace
