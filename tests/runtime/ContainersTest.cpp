// ContainersTest.cpp - Array, BaseString, HashMap and Stack: growth, bounds, ordering, ownership
#include <gtest/gtest.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/HashMap.h>
#include <quarnCore/Stack.h>

#include <string>
#include <vector>

#include "support/ExpectThrow.h"

namespace {

using quarn::Array;
using quarn::BaseString;
using quarn::HashMap;
using quarn::InvalidIndexException;

/// Counts its live instances, so tests see every construction matched by a destruction.
struct Tracked {
  static inline int live = 0;
  int value;
  Tracked(int v = 0) : value(v) { ++live; }  // NOLINT(google-explicit-constructor)
  Tracked(Tracked const &other) : value(other.value) { ++live; }
  Tracked &operator=(Tracked const &) = default;
  ~Tracked() { --live; }
};

template <class T>
std::vector<int> valuesOf(Array<T> const &a) {
  std::vector<int> v;
  for (auto const &x : a) v.push_back(static_cast<int>(x.value));
  return v;
}

/// Runs `statement` and checks it throws InvalidIndexException(index, lastValid).
template <class F>
void expectInvalidIndex(F &&statement, int index, int lastValid) {
  EXPECT_QUARN_THROW_AS(
      statement(), InvalidIndexException,
      "Invalid index " + std::to_string(index) + " (last valid index " + std::to_string(lastValid) + ")");
}

TEST(ArrayTest, GrowsFromFiveByDoubling) {
  // clang-format off
  struct Case { unsigned int size, capacity; } const cases[] = {
      {1, 5}, {5, 5}, {6, 10}, {10, 10}, {11, 20}, {21, 40},
  };
  // clang-format on
  for (auto const &c : cases) {
    Array<int> appended;
    for (unsigned int i = 0; i < c.size; ++i) appended.append(static_cast<int>(i));
    EXPECT_EQ(appended.getCapacity(), c.capacity) << c.size;
    Array<int> resized;
    resized.resize(c.size);
    EXPECT_EQ(resized.getCapacity(), c.capacity) << c.size;
  }
  Array<int> a;
  a.reserve(3);
  EXPECT_EQ(a.getCapacity(), 5u);
  a.reserve(12);
  a.resize(0);  // shrinking keeps the buffer
  EXPECT_EQ(a.getCapacity(), 20u);
  a.clear();
  EXPECT_EQ(a.getCapacity(), 0u);
  EXPECT_EQ(a.getBuffer(), nullptr);
}

TEST(ArrayTest, EditsKeepOrderLeakNothingAndIndexesPastTheSizeThrowWithTheLastValidIndex) {
  Array<int> empty, three;
  three.resize(3);
  Array<int> const &constThree = three;
  expectInvalidIndex([&] { empty[0]; }, 0, -1);
  expectInvalidIndex([&] { three[3]; }, 3, 2);
  expectInvalidIndex([&] { constThree[7]; }, 7, 2);
  expectInvalidIndex([&] { three.remove(3); }, 3, 2);
  expectInvalidIndex([&] { three.insert(4, 0); }, 4, 2);
  expectInvalidIndex([&] { empty.pop(); }, 0, -1);
  {
    Array<Tracked> a;
    for (int i = 0; i < 5; ++i) a.append(Tracked(i));
    a.insert(0, Tracked(10));
    a.insert(3, Tracked(11));
    a.insert(a.getSize(), Tracked(12));
    EXPECT_EQ(valuesOf(a), (std::vector<int>{10, 0, 1, 11, 2, 3, 4, 12}));
    EXPECT_EQ(Tracked::live, 8);
    a.remove(3);
    a.remove(0);
    EXPECT_EQ(a.pop().value, 12);
    EXPECT_EQ(valuesOf(a), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(Tracked::live, 5);
    a.append(a[0]);  // the source lives in the buffer that grows
    EXPECT_EQ(valuesOf(a), (std::vector<int>{0, 1, 2, 3, 4, 0}));
    Array<Tracked> copy(a);
    Array<Tracked> moved(std::move(copy));
    EXPECT_EQ(Tracked::live, 12);
    a = moved;
    a.clear();
    EXPECT_EQ(Tracked::live, 6);
  }
  EXPECT_EQ(Tracked::live, 0);
}

TEST(BaseStringTest, NullIsBeforeEmptyCharactersCompareSignedAndUnitsUnsigned) {
  BaseString<char> null, empty(""), a("a");
  EXPECT_TRUE(null.isNull() && null.isEmpty() && empty.isEmpty() && !empty.isNull());
  EXPECT_NE(null, empty);
  EXPECT_LT(null.compare(empty), 0);
  EXPECT_GT(empty.compare(null), 0);
  EXPECT_EQ(null.compare(BaseString<char>()), 0);
  EXPECT_TRUE(null < empty && empty < a);
  EXPECT_EQ(null.hashCode(), 0u);
  EXPECT_EQ(BaseString<char>("ab").hashCode(), 97u * 31 + 98);
  // characters compare signed, units unsigned: "\x80" is -128 against 97 as char, 0x80 against 0x61 as a unit
  // clang-format off
  struct Case { char const *left, *right; int narrowSign, wideSign; } const cases[] = {
      {"\x80", "a", -1, 1}, {"\xFF", "\x7F", -1, 1}, {"ab", "abc", -1, -1}, {"abc", "abd", -1, -1}, {"b", "abc", 1, 1},
      {"same", "same", 0, 0},
  };
  // clang-format on
  auto sign = [](int v) { return (v > 0) - (v < 0); };
  for (auto const &c : cases) {
    BaseString<char> nl(c.left), nr(c.right);
    BaseString<unsigned short> wl(c.left), wr(c.right);
    SCOPED_TRACE(c.left);
    EXPECT_EQ(sign(nl.compare(nr)), c.narrowSign);
    EXPECT_EQ(sign(nr.compare(nl)), -c.narrowSign);
    EXPECT_EQ(sign(wl.compare(wr)), c.wideSign);
    EXPECT_EQ(sign(wr.compare(wl)), -c.wideSign);
    EXPECT_EQ(nl < nr, c.narrowSign < 0);
    EXPECT_EQ(wl == wr, c.wideSign == 0);
  }
  unsigned short const high[] = {0xFFFF, 0};
  EXPECT_GT(BaseString<unsigned short>(high).compare(BaseString<unsigned short>("a")), 0);
}

struct IntTraits {
  static unsigned int hash(int k) { return static_cast<unsigned int>(k); }
  static bool equal(int a, int b) { return a == b; }
};

TEST(HashMapTest, GrowsAtThreeQuartersToTheNextPrimeAboveDouble) {
  HashMap<int, int, IntTraits> map;
  EXPECT_EQ(map.getBucketCount(), 31u);
  // clang-format off
  struct Step { int inserts; unsigned int buckets; } const steps[] = {
      {23, 31}, {24, 67}, {50, 67}, {51, 137}, {102, 137}, {103, 277},
  };
  // clang-format on
  int inserted = 0;
  for (auto const &s : steps) {
    for (; inserted < s.inserts; ++inserted) EXPECT_TRUE(map.put(inserted, inserted * 2));
    EXPECT_EQ(map.getBucketCount(), s.buckets) << s.inserts;
  }
  EXPECT_FALSE(map.put(5, -5));  // replacing never grows
  EXPECT_EQ(map.getCount(), 103u);
  for (int k = 0; k < 103; ++k) ASSERT_EQ(*map.find(k), k == 5 ? -5 : k * 2);
  EXPECT_EQ(map.find(103), nullptr);
  // the next prime steps over odd candidates
  // clang-format off
  struct Case { unsigned int n, prime; } const cases[] = {
      {0, 2}, {1, 2}, {2, 3}, {3, 5}, {7, 11}, {8, 11}, {24, 29}, {31, 37}, {62, 67}, {134, 137}, {274, 277},
      {4294967290u, 4294967291u},
  };
  // clang-format on
  for (auto const &c : cases) EXPECT_EQ(quarn::detail::nextPrime(c.n), c.prime) << c.n;
}

TEST(HashMapTest, ReusesRemovedNodesFreesEverythingAndRefusesZeroBuckets) {
  {
    HashMap<int, Tracked, IntTraits> map;
    for (int k = 0; k < 4; ++k) map.put(k, Tracked(k));
    EXPECT_TRUE(map.remove(1));
    EXPECT_FALSE(map.remove(1));
    EXPECT_EQ(map.getSpareCount(), 1u);
    EXPECT_EQ(Tracked::live, 4);  // the spare node keeps its value until reused
    map.put(40, Tracked(40));
    EXPECT_EQ(map.getSpareCount(), 0u);
    EXPECT_EQ(Tracked::live, 4);
    EXPECT_EQ(map.find(40)->value, 40);
    EXPECT_EQ(map.find(1), nullptr);
    map.remove(0);
  }
  EXPECT_EQ(Tracked::live, 0);
  HashMap<int, int, IntTraits> map;
  map.put(1, 1);
  EXPECT_QUARN_THROW(map.resize(0), "Cannot resize a hash map to 0");
  EXPECT_EQ(*map.find(1), 1);
  EXPECT_QUARN_THROW((HashMap<int, int, IntTraits>(0)), "Cannot resize a hash map to 0");
}

TEST(StackTest, PopsLastInFirstOutAndRefusesWhenEmpty) {
  quarn::Stack<int> stack;
  for (int i = 1; i <= 3; ++i) stack.push(i);
  EXPECT_EQ(stack.top(), 3);
  for (int i = 3; i >= 1; --i) EXPECT_EQ(stack.pop(), i);
  EXPECT_QUARN_THROW(stack.pop(), "Stack is empty");
  EXPECT_QUARN_THROW(stack.top(), "Stack is empty");
}

}  // namespace
