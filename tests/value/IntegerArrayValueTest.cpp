// IntegerArrayValueTest.cpp - conversions, search, order, hash and bytes of the integer array
#include <gtest/gtest.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/MemoryStream.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <random>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

constexpr unsigned int kNotFound = IntegerArrayValue::kNotFound;

IntegerArrayValue fromVector(std::vector<int> const &v) {
  return IntegerArrayValue(v.data(), static_cast<unsigned int>(v.size()));
}

std::vector<int> randomInts(std::size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_int_distribution<int> dist(INT_MIN, INT_MAX);
  std::vector<int> v(n);
  for (int &x : v) x = dist(gen);
  return v;
}

TEST(IntegerArrayValueTest, ElementsConvertAsIntegers) {
  IntegerArrayValue const a = arrayOf<IntegerArrayValue>({0, -5, INT_MIN});
  Array<WString> texts;
  Array<double> doubles;
  Array<bool> bools;
  a.getArray(texts), a.getArray(doubles), a.getArray(bools);
  ASSERT_EQ(texts.getSize(), 3u);
  EXPECT_EQ(str(texts[2]), u"-2147483648");
  EXPECT_EQ(std::vector<double>(doubles.begin(), doubles.end()), (std::vector<double>{0, -5, INT_MIN}));
  EXPECT_EQ(std::vector<bool>(bools.begin(), bools.end()), (std::vector<bool>{false, true, true}));
}

TEST(IntegerArrayValueTest, FindScansAfterTheStartAcrossLongArraysAndGetThrowsOnAMiss) {
  IntegerArrayValue const a = arrayOf<IntegerArrayValue>({1, 2, 1, 3});
  // clang-format off
  struct Case { int x; unsigned int start, found; } const cases[] = {
      {1, kNotFound, 0}, {1, 0, 2}, {1, 2, kNotFound}, {3, kNotFound, 3}, {3, 3, kNotFound}, {9, kNotFound, kNotFound},
  };
  // clang-format on
  for (auto const &c : cases) EXPECT_EQ(a.find(c.x, c.start), c.found) << c.x << " after " << c.start;
  EXPECT_EQ(IntegerArrayValue().find(0), kNotFound);
  EXPECT_EQ(a.get(2), 1u);
  EXPECT_QUARN_THROW(a.get(9), "ArrayValueImpl::get, array value was not found");
  // the scan agrees with a plain one across long arrays
  std::vector<int> v(300, 4);
  for (unsigned int pos : {0u, 15u, 16u, 63u, 64u, 299u}) {
    v[pos] = 9;
    EXPECT_EQ(fromVector(v).find(9), pos);
    EXPECT_EQ(fromVector(v).find(9, pos), kNotFound);
    v[pos] = 4;
  }
}

TEST(IntegerArrayValueTest, LongerArrayComparesGreaterThenTheFirstDifferenceDecidesSigned) {
  // clang-format off
  struct Case { std::vector<int> a, b; int expected; } const cases[] = {
      {{1, 2, 3}, {5, 6}, 1}, {{1, 2}, {1, 3}, -1}, {{-1}, {1}, -1}, {{INT_MIN}, {INT_MAX}, -1}, {{}, {}, 0},
      {{4, 4}, {4, 4}, 0},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(fromVector(c.a).compare(fromVector(c.b)), c.expected);
    EXPECT_EQ(fromVector(c.b).compare(fromVector(c.a)), -c.expected);
  }
  // Another class orders by name, the other's first: "Marlix.value.DoubleArrayValue" - "...IntegerArrayValue".
  EXPECT_EQ(IntegerArrayValue().compare(DoubleArrayValue()), 'D' - 'I');
  // and agrees with lexicographic order at every position
  std::vector<int> const base = randomInts(150, 1);
  for (unsigned int pos = 0; pos < base.size(); pos += 7) {
    for (int delta : {-1, 1}) {
      std::vector<int> other = base;
      other[pos] += delta;
      int expected = std::lexicographical_compare(base.begin(), base.end(), other.begin(), other.end()) ? -1 : 1;
      EXPECT_EQ(fromVector(base).compareValues(fromVector(other)), expected) << pos;
    }
  }
}

TEST(IntegerArrayValueTest, HashIsThe31PolynomialOfTheElements) {
  EXPECT_EQ(arrayOf<IntegerArrayValue>({1, 2}).hash(), 33u);
  EXPECT_EQ(IntegerArrayValue().hash(), 0u);
  for (std::size_t n = 0; n < 70; ++n) {
    std::vector<int> const v = randomInts(n, static_cast<unsigned>(n) + 10);
    std::uint32_t h = 0;
    for (int x : v) h = h * 31u + static_cast<std::uint32_t>(x);
    EXPECT_EQ(fromVector(v).hash(), h) << n;
  }
}

TEST(IntegerArrayValueTest, PayloadIsTheCountThenEachElementAsAStreamInt) {
  expectPayload(IntegerArrayValue(), "00");
  expectPayload(arrayOf<IntegerArrayValue>({7, 16}), "08 1C 01 10");
  expectPayload(arrayOf<IntegerArrayValue>({-129, 40000}), "08 02 7F FF 03 40 9C 00 00");
}

TEST(IntegerArrayValueTest, EveryStreamGetsTheSameBytesAsElementByElementWrites) {
  std::vector<int> v = randomInts(5000, 2);
  for (std::size_t i = 0; i < v.size(); i += 3) v[i] >>= (i % 31);  // every encoded size
  IntegerArrayValue const a = fromVector(v);
  MemoryOutputStream expected;
  expected << static_cast<int>(v.size());
  for (int x : v) static_cast<iByteOutputStream &>(expected) << x;
  Bytes const want(expected.getBuffer(), expected.getBuffer() + expected.getSize());
  EXPECT_EQ(serialise(a), want);
  CollectingOutputStream recorded;
  a.serialize(recorded);
  EXPECT_EQ(recorded.bytes, want);
}

}  // namespace
}  // namespace quarn::test
