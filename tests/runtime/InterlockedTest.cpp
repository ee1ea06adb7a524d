// InterlockedTest.cpp - counters changed from many threads at once
#include <quarnCore/Interlocked.h>

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr int kThreads = 4;
constexpr int kPerThread = 50000;

/// Runs `body` on kThreads threads at once and waits for them all.
template <class F>
void onThreads(F body) {
  std::vector<std::jthread> threads;
  for (int t = 0; t < kThreads; ++t) threads.emplace_back(body);
}

TEST(InterlockedTest, EveryIncrementReturnsADistinctNewValue) {
  long counter = 0;
  std::vector<char> seen(kThreads * kPerThread + 1, 0);
  onThreads([&] {
    for (int i = 0; i < kPerThread; ++i) seen[quarn::InterlockedIncrement(counter)] = 1;
  });
  EXPECT_EQ(counter, kThreads * kPerThread);
  for (std::size_t v = 1; v < seen.size(); ++v) ASSERT_EQ(seen[v], 1) << v;
  std::atomic<int> zeros = 0;
  onThreads([&] {
    for (int i = 0; i < kPerThread; ++i)
      if (quarn::ForcedInterlockedDecrement(counter) == 0) ++zeros;  // only one thread ever sees 0
  });
  EXPECT_EQ(counter, 0);
  EXPECT_EQ(zeros, 1);
}

}  // namespace
