// PropertyTable.h - the ordered, name-indexed storage of the library's property lists
//
// PropertyCollection, DataRecord and DataNode keep their properties in one
// PropertyTable: one entry per Property in insertion order (the table holds
// one counted reference on each), carrying what a lookup compares: the name's
// length and first unit, a 32-bit hash of the name, and its units (the
// property's own buffer; a property's name never changes). Up to kLinearLimit
// properties a lookup scans the entries comparing length and first unit, then
// the name, without hashing; above it the name is hashed once (eight bytes at
// a time) and an open-addressed index (linear probing, at most half full, a
// power of two in size) whose slots hold the hash beside the position takes it
// straight to the entry. Removal rebuilds the index. The lookup is inline and
// loads only fixed-size words, so it makes no call at all; the limit and the
// layout were chosen by measuring (bench/PropertyBench).
//
// Not thread-safe; not copyable (swap is). Indices at or beyond the size throw
// InvalidIndexException(index, size - 1).
#pragma once

#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

#include <cstdint>
#include <cstring>

namespace quarn {

class Property;
struct iPropertyCollection;

namespace detail {

class QUARN_API PropertyTable {
 public:
  /// Up to this many properties lookups scan the entries; above it they use the index.
  static constexpr unsigned int kLinearLimit = 8;

  PropertyTable() = default;
  ~PropertyTable();
  PropertyTable(PropertyTable const &) = delete;
  PropertyTable &operator=(PropertyTable const &) = delete;

  unsigned int size() const noexcept { return m_entries.getSize(); }
  /// Property `i`, borrowed (checked).
  Property *at(unsigned int i) const { return m_entries[i].property; }
  /// The property named `name`, borrowed, or null.
  Property *find(BaseString<unsigned short> const &name) const noexcept {
    return find(name.getBuffer(), name.getLength());
  }
  Property *find(unsigned short const *units, unsigned int length) const noexcept;
  /// The same with the name's hash already known.
  Property *find(unsigned short const *units, unsigned int length, std::uint32_t hash) const noexcept;

  /// The property `name` of class `valueClass`: the existing one, or a new one
  /// appended (see iPropertyCollection::defineProperty for the failures).
  Property *define(BaseString<unsigned short> const &name, ClassTag const &valueClass);
  /// Appends `property` (defined, with a name not in the table) and takes a
  /// reference on it; `hash` is hashName of its name. On failure nothing changes.
  void append(Property *property, std::uint32_t hash);
  void append(Property *property);
  /// Makes room for `count` properties (the index too), so appending up to it
  /// allocates nothing more.
  void reserve(unsigned int count);
  /// Puts `property` (defined, named as property `i` is) in place of
  /// property `i`, which is released; takes a reference on it. Unchecked.
  void replaceAt(unsigned int i, Property *property) noexcept;
  /// Releases the properties from position `n` on (n < size); keeps the storage.
  void truncate(unsigned int n) noexcept;
  /// Removes property `i` and releases it (checked).
  void removeAt(unsigned int i);
  /// Removes the property named `name`; false when there is none.
  bool remove(BaseString<unsigned short> const &name);
  /// Releases every property and frees the storage.
  void clear() noexcept;
  /// Replaces the contents with copies of `source`'s properties (any
  /// implementation); on failure the table is unchanged.
  void copyFrom(iPropertyCollection const &source);
  void swap(PropertyTable &other) noexcept;

  /// The hash lookups use: the same for equal names, whatever their storage.
  static std::uint32_t hashName(unsigned short const *units, unsigned int length) noexcept;

 private:
  struct Entry {
    std::uint64_t key;  // keyOf the name
    std::uint32_t hash;
    unsigned short const *units;
    Property *property;
  };

  /// Length and first unit in one word (length >= 1).
  static std::uint64_t keyOf(unsigned short const *units, unsigned int length) noexcept {
    return std::uint64_t{length} << 16 | units[0];
  }

  static bool sameUnits(unsigned short const *a, unsigned short const *b, unsigned int length) noexcept;
  void indexEntry(unsigned int position) noexcept;
  void rebuildIndex() noexcept;

  Array<Entry> m_entries;
  /// Empty, or a power of two of slots: hash << 32 | (position + 1), 0 = free.
  Array<std::uint64_t> m_index;
};

namespace table {

/// The `bytes` (0 to 7) bytes at `p` as the low bytes of a word; every load has a fixed size.
inline std::uint64_t loadShort(unsigned char const *p, std::size_t bytes) noexcept {
  std::uint64_t word = 0;
  if (bytes >= 4) {
    std::uint32_t low, high;
    std::memcpy(&low, p, 4);
    std::memcpy(&high, p + bytes - 4, 4);  // overlaps `low` below 8 bytes
    word = low | std::uint64_t{high} << ((bytes - 4) * 8);
  } else if (bytes >= 2) {
    std::uint16_t low;
    std::memcpy(&low, p, 2);
    word = low;
  }
  return word;
}

inline std::uint64_t load8(unsigned char const *p) noexcept {
  std::uint64_t word;
  std::memcpy(&word, p, 8);
  return word;
}

}  // namespace table

inline std::uint32_t PropertyTable::hashName(unsigned short const *units, unsigned int length) noexcept {
  // Eight bytes at a time: xor a word in, multiply, fold the high half down.
  // Names of four units or more end with their last eight bytes (overlapping).
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
  auto const *p = reinterpret_cast<unsigned char const *>(units);
  std::size_t const bytes = std::size_t{length} * sizeof(unsigned short);
  std::uint64_t h = (std::uint64_t{length} + 1) * kMultiplier;
  if (bytes < 8) {
    h = (h ^ table::loadShort(p, bytes)) * kMultiplier;
  } else {
    std::size_t i = 0;
    for (; i + 8 < bytes; i += 8) {
      h = (h ^ table::load8(p + i)) * kMultiplier;
      h ^= h >> 32;
    }
    h = (h ^ table::load8(p + bytes - 8)) * kMultiplier;
  }
  h ^= h >> 32;
  return static_cast<std::uint32_t>(h ^ (h >> 17));
}

inline bool PropertyTable::sameUnits(unsigned short const *a, unsigned short const *b, unsigned int length) noexcept {
  auto const *p = reinterpret_cast<unsigned char const *>(a);
  auto const *q = reinterpret_cast<unsigned char const *>(b);
  std::size_t const bytes = std::size_t{length} * sizeof(unsigned short);
  if (bytes < 8) return table::loadShort(p, bytes) == table::loadShort(q, bytes);
  for (std::size_t i = 0; i + 8 < bytes; i += 8)
    if (table::load8(p + i) != table::load8(q + i)) return false;
  return table::load8(p + bytes - 8) == table::load8(q + bytes - 8);
}

inline Property *PropertyTable::find(unsigned short const *units, unsigned int length) const noexcept {
  if (length == 0) return nullptr;  // no property has an empty name
  if (m_index.isEmpty()) {
    // Few properties: compare length and first unit, then the name; no hash needed.
    std::uint64_t const key = keyOf(units, length);
    for (Entry const &e : m_entries)
      if (e.key == key && sameUnits(e.units, units, length)) return e.property;
    return nullptr;
  }
  return find(units, length, hashName(units, length));
}

inline Property *PropertyTable::find(unsigned short const *units, unsigned int length,
                                     std::uint32_t hash) const noexcept {
  Entry const *entries = m_entries.getBuffer();
  if (m_index.isEmpty()) {
    std::uint64_t const key = keyOf(units, length);
    for (unsigned int i = 0, n = m_entries.getSize(); i < n; ++i)
      if (entries[i].key == key && sameUnits(entries[i].units, units, length)) return entries[i].property;
    return nullptr;
  }
  std::uint64_t const *index = m_index.getBuffer();
  unsigned int const mask = m_index.getSize() - 1;
  for (unsigned int slot = hash & mask;; slot = (slot + 1) & mask) {
    std::uint64_t const s = index[slot];
    if (s == 0) return nullptr;
    if (static_cast<std::uint32_t>(s >> 32) == hash) {
      Entry const &e = entries[static_cast<std::uint32_t>(s) - 1];
      if (e.key == keyOf(units, length) && sameUnits(e.units, units, length)) return e.property;
    }
  }
}

}  // namespace detail
}  // namespace quarn
