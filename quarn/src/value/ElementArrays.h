// ElementArrays.h - what the arrays of value objects share: conversion, hash and order over elements
//
// FlexArrayValue, ValueArrayValue and NullArrayValue hold value objects
// rather than plain numbers, and each element converts, hashes and compares
// by its own class's rules. These helpers walk the elements once for all
// three: getArray collects getIthX of every element (built aside, so a
// conversion that throws leaves the output as it was); the hash is
// h = h * 31 + element hash over the elements (0 for none); the order makes a
// longer array greater and otherwise takes the first non-zero element compare.
#pragma once

#include <quarn/value/ArrayValue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

#include <type_traits>
#include <utility>

namespace quarn::detail {

/// `out` replaced by every element of `array` converted to X by its getIthX.
template <class X>
void collectElements(ArrayValue const &array, Array<X> &out) {
  unsigned int const n = array.getSize();
  Array<X> result;
  result.reserve(n);
  for (unsigned int k = 0; k < n; ++k) {
    if constexpr (std::is_same_v<X, double>) {
      result.append(array.getIthDouble(k));
    } else if constexpr (std::is_same_v<X, int>) {
      result.append(array.getIthInteger(k));
    } else if constexpr (std::is_same_v<X, bool>) {
      result.append(array.getIthBoolean(k));
    } else {
      X text;
      array.getIthString(k, text);
      result.append(std::move(text));
    }
  }
  out.swap(result);
}

/// h = h * 31 + item(element).hash() over the elements, in order.
template <class T, class Item>
unsigned int hashElements(Array<T> const &elements, Item item) {
  unsigned int h = 0;
  for (T const &e : elements) h = h * 31u + item(e).hash();
  return h;
}

/// 1 when `mine` is longer, -1 when shorter, else the first non-zero
/// item(mine[k]).compare(item(theirs[k])), or 0.
template <class T, class Item>
int compareElements(Array<T> const &mine, Array<T> const &theirs, Item item) {
  if (mine.getSize() != theirs.getSize()) return mine.getSize() > theirs.getSize() ? 1 : -1;
  for (unsigned int k = 0; k < mine.getSize(); ++k)
    if (int c = item(mine.getBuffer()[k]).compare(item(theirs.getBuffer()[k]))) return c;
  return 0;
}

}  // namespace quarn::detail
