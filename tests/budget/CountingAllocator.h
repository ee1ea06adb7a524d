// CountingAllocator.h - live and peak heap bytes of this test program
//
// The program replaces malloc and its kin (and so operator new, which calls
// malloc) with versions that count the bytes asked for; under a sanitizer,
// which owns malloc itself, it counts through the sanitizer's allocation
// hooks instead. Counts cover every thread; the budget tests run on one.
#pragma once

#include <cstddef>

namespace quarn::test {

/// Bytes allocated and not yet freed.
long long liveHeapBytes() noexcept;
/// The most live bytes since the last resetPeakHeapBytes().
long long peakHeapBytes() noexcept;
/// Starts a new peak at the live bytes of now.
void resetPeakHeapBytes() noexcept;
/// Whether allocations are counted in this build.
bool heapCounting() noexcept;

}  // namespace quarn::test
