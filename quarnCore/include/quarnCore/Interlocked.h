// Interlocked.h - atomic increments and decrements of plain counters
//
// The counters stay plain integers (so objects keep their layout) and are
// changed through std::atomic_ref. Each call returns the new value. The
// "Forced" variants are atomic in every configuration; in this library all of
// them are.
#pragma once

#include <atomic>

namespace quarn {

template <class T>
inline T InterlockedIncrement(T &value) noexcept {
  return std::atomic_ref<T>(value).fetch_add(1, std::memory_order_acq_rel) + 1;
}
template <class T>
inline T InterlockedDecrement(T &value) noexcept {
  return std::atomic_ref<T>(value).fetch_sub(1, std::memory_order_acq_rel) - 1;
}
template <class T>
inline T ForcedInterlockedIncrement(T &value) noexcept {
  return InterlockedIncrement(value);
}
template <class T>
inline T ForcedInterlockedDecrement(T &value) noexcept {
  return InterlockedDecrement(value);
}

}  // namespace quarn
