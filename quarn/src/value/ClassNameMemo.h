// ClassNameMemo.h - the classes of the class names a reader met last
//
// Value arrays read each element's class name from the stream and make the
// element by it. A run of records names the same few classes over and over,
// so a reader keeps the classes it found last here and finds them again
// without the tag registry: no lock, no allocation, a few compares. Only
// names that are interned and bound to a class are remembered, keyed by the
// exact bytes of the interned spelling (another letter case goes to the
// registry each time); an entry holds only while the binding generation
// (ClassTag::getBindingGeneration) it was made with is current, so a class
// unbound when its library unloads is never answered.
#pragma once

#include <cstdint>
#include <cstring>

namespace quarn {

class Class;

namespace detail {

/// The classes of the names a reader met last. 32 sets of 2 entries, chosen
/// by the name's length and last 8 bytes; an entry answers only for the
/// exact bytes of the interned spelling, and only while no class has been
/// bound or unbound since it was made (the generation it was made with).
/// Trivially destructible and constant-initialised, so it can be a
/// thread_local without a guard.
class ClassNameMemo {
 public:
  /// The class remembered for the `length` bytes at `bytes`, or null.
  Class const *find(char const *bytes, unsigned int length, unsigned int generation) noexcept {
    std::uint64_t const key = keyOf(bytes, length);
    Entry *set = m_sets[setOf(key)];
    for (int way = 0; way < 2; ++way) {
      Entry const &e = set[way];
      if (e.key == key && e.length == length && e.generation == generation && sameBytes(e.name, bytes, length)) {
        m_lastWay[setOf(key)] = static_cast<unsigned char>(way);
        return e.cls;
      }
    }
    return nullptr;
  }
  /// Remembers `cls` for `name` (an interned spelling, which lives as long as the registry).
  void remember(char const *name, unsigned int length, unsigned int generation, Class const *cls) noexcept {
    std::uint64_t const key = keyOf(name, length);
    unsigned int const set = setOf(key);
    unsigned int const way = m_lastWay[set] ^ 1u;  // keep the entry that answered last
    m_sets[set][way] = Entry{key, name, cls, length, generation};
    m_lastWay[set] = static_cast<unsigned char>(way);
  }

 private:
  static constexpr unsigned int kSetBits = 5;
  struct Entry {
    std::uint64_t key = 0;
    char const *name = nullptr;
    Class const *cls = nullptr;
    unsigned int length = 0;
    unsigned int generation = 0;
  };
  static std::uint64_t keyOf(char const *bytes, unsigned int length) noexcept {
    std::uint64_t tail = 0;
    if (length >= 8)
      std::memcpy(&tail, bytes + length - 8, 8);
    else
      std::memcpy(&tail, bytes, length);
    return (tail ^ length) * 0x9E3779B97F4A7C15ull;
  }
  static unsigned int setOf(std::uint64_t key) noexcept { return static_cast<unsigned int>(key >> (64 - kSetBits)); }
  /// memcmp(a, b, n) == 0, in 8-byte words for names of 8 bytes or more (the last word overlapping).
  static bool sameBytes(char const *a, char const *b, unsigned int n) noexcept {
    if (n < 8) return std::memcmp(a, b, n) == 0;
    std::uint64_t x, y, diff = 0;
    for (unsigned int i = 0; i + 8 < n; i += 8) {
      std::memcpy(&x, a + i, 8);
      std::memcpy(&y, b + i, 8);
      diff |= x ^ y;
    }
    std::memcpy(&x, a + n - 8, 8);
    std::memcpy(&y, b + n - 8, 8);
    return (diff | (x ^ y)) == 0;
  }

  Entry m_sets[1u << kSetBits][2];
  unsigned char m_lastWay[1u << kSetBits] = {};
};

}  // namespace detail
}  // namespace quarn
