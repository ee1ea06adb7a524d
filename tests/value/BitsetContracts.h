// BitsetContracts.h - the bitsets, bit fingerprints and bitset arrays as members of the value contract suite
//
// BitsetContract<T> gives the suite its samples of each bitset class; the
// bitset arrays join through ArrayContract. Bitsets of equal length that
// differ compare 1 both ways (deliberately), so the samples of the ordered
// classes differ in length; bit fingerprints compare equal or not at all and
// say so (comparesEqualOrNot). Arrays have no XML text of their own: a
// one-element array reads back from element 0's positions when that element's
// last bit is on (the text carries no bit count).
#pragma once

#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetArrayValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BitsetValue2D.h>
#include <quarn/value/BitsetValue3D.h>

#include <initializer_list>
#include <utility>
#include <vector>

#include "value/ArrayContracts.h"

namespace quarn::test {

/// A bitset of class B with `n` bits and `on` set.
template <class B = BitsetValue>
B bitsetOf(unsigned int n, std::initializer_list<unsigned int> on = {}) {
  B b;
  static_cast<BitsetValue &>(b) = BitsetValue(n);
  for (unsigned int p : on) b.setOn(p);
  return b;
}

/// Bitsets of distinct lengths, from empty to several hundred words.
template <class B>
std::vector<B> bitsetSamples() {
  std::vector<B> s{bitsetOf<B>(0),
                   bitsetOf<B>(1, {0}),
                   bitsetOf<B>(5),
                   bitsetOf<B>(7, {0, 6}),
                   bitsetOf<B>(32, {31}),
                   bitsetOf<B>(33, {0, 32}),
                   bitsetOf<B>(100, {3, 64, 99})};
  B wide = bitsetOf<B>(20000);
  for (unsigned int p = 0; p < 20000; p += 7) wide.setOn(p);
  s.push_back(std::move(wide));
  return s;
}

template <class B>
struct BitsetContractBase {
  static constexpr char const arrayClass[] = "Marlix.value.BitsetArrayValue";
  static constexpr bool streamKeepsAll = true;
  static bool xmlRoundTrips(B const &) { return true; }
};

template <class B>
struct BitsetContract;

template <>
struct BitsetContract<BitsetValue> : BitsetContractBase<BitsetValue> {
  static std::vector<BitsetValue> samples() { return bitsetSamples<BitsetValue>(); }
};

template <>
struct BitsetContract<BitFingerprintValue> : BitsetContractBase<BitFingerprintValue> {
  static constexpr char const arrayClass[] = "Marlix.value.BitFingerprintArrayValue";
  static constexpr bool comparesEqualOrNot = true;
  static std::vector<BitFingerprintValue> samples() {
    std::vector<BitFingerprintValue> s = bitsetSamples<BitFingerprintValue>();
    s.push_back(bitsetOf<BitFingerprintValue>(7, {1}));  // same length as another sample
    return s;
  }
};

// The extents are not part of a grid's order, payload or XML text.
template <>
struct BitsetContract<BitsetValue2D> : BitsetContractBase<BitsetValue2D> {
  static std::vector<BitsetValue2D> samples() {
    std::vector<BitsetValue2D> s(4);
    s[1].resize(2, 3);
    s[1].setOn(1, 1);
    s[2].resize(5, 7);
    s[2].setOn(4, 6);
    s[2].setOn(0, 0);
    s[3].resize(1, 40);
    return s;
  }
};

template <>
struct BitsetContract<BitsetValue3D> : BitsetContractBase<BitsetValue3D> {
  static std::vector<BitsetValue3D> samples() {
    std::vector<BitsetValue3D> s(3);
    s[1].resize(2, 2, 2);
    s[1].setOn(1, 1, 1);
    s[2].resize(3, 4, 5);
    s[2].setOn(2, 3, 0);
    return s;
  }
};

template <class A>
A bitsetArrayOf(std::initializer_list<typename A::ElementType> elements) {
  A a;
  for (auto const &e : elements) a.append(e);
  return a;
}

// Distinct element counts (equal-length arrays of differing bitsets compare 1
// both ways), and at least one element each: an array's text is element 0's.
template <>
struct ArrayContract<BitsetArrayValue> : ArrayContractBase<BitsetArrayValue, BitsetValue> {
  static std::vector<BitsetArrayValue> samples() {
    using A = BitsetArrayValue;
    return {bitsetArrayOf<A>({bitsetOf(5, {0, 4})}), bitsetArrayOf<A>({bitsetOf(3), bitsetOf(8, {7})}),
            bitsetArrayOf<A>({bitsetOf(1, {0}), bitsetOf(40, {39}), bitsetOf(0)})};
  }
  static bool xmlRoundTrips(BitsetArrayValue const &v) {
    return v.getSize() == 1 && v[0].getNumBits() > 0 && v[0][v[0].getNumBits() - 1];
  }
};

template <>
struct ArrayContract<BitFingerprintArrayValue> : ArrayContractBase<BitFingerprintArrayValue, BitFingerprintValue> {
  static std::vector<BitFingerprintArrayValue> samples() {
    using A = BitFingerprintArrayValue;
    using F = BitFingerprintValue;
    return {bitsetArrayOf<A>({bitsetOf<F>(5, {0, 4})}), bitsetArrayOf<A>({bitsetOf<F>(3), bitsetOf<F>(8, {7})})};
  }
  static bool xmlRoundTrips(BitFingerprintArrayValue const &v) {
    return v.getSize() == 1 && v[0].getNumBits() > 0 && v[0][v[0].getNumBits() - 1];
  }
};

}  // namespace quarn::test
