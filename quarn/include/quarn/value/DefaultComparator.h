// DefaultComparator.h - element equality and order of the integer, boolean and byte arrays
//
// Equality is equality of the values; at the first index where two arrays
// differ, the element that is smaller as its own type (int signed, bool and
// unsigned char unsigned) makes its array the smaller one. Stateless; the
// arrays call the static members.
#pragma once

namespace quarn {

template <class T>
struct DefaultComparator {
  static bool equal(T a, T b) noexcept { return a == b; }
  /// For two elements that are not equal: -1 when `a` is smaller, else 1.
  static int order(T a, T b) noexcept { return a < b ? -1 : 1; }
};

}  // namespace quarn
