// DoubleComparator.h - element equality and order of the double arrays
//
// Two doubles are equal only when they compare ordered-equal: 0.0 equals
// -0.0, and a NaN equals nothing, not even a NaN, so it is never found. At
// the first index where two arrays differ the answer is -1 when this array's
// element is ordered-less than the other's and 1 otherwise: a NaN on either
// side gives 1, so an array holding a NaN compares as 1 even against itself.
// That asymmetry is deliberate and kept. Stateless.
#pragma once

namespace quarn {

struct DoubleComparator {
  static bool equal(double a, double b) noexcept { return a == b; }
  /// For two elements that are not equal: -1 when `a` is ordered-less than `b`, else 1.
  static int order(double a, double b) noexcept { return a < b ? -1 : 1; }
};

}  // namespace quarn
