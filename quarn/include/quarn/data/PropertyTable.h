// PropertyTable.h - the ordered, name-indexed storage of the library's property lists
//
// PropertyCollection, DataRecord and DataNode keep their properties in one
// PropertyTable: the Property objects in insertion order (one counted
// reference each), beside each one a 32-bit hash of its name. Looking a name
// up hashes it once (word at a time), then compares hashes and, on a match,
// the name itself. Up to kLinearLimit properties the hashes are scanned in
// order; above it an open-addressed index (linear probing, at most half full,
// a power of two in size) takes the hash straight to the entry. Removal
// rebuilds the index. The limit was chosen by measuring (bench/PropertyBench).
//
// Not thread-safe; not copyable (swap is). Indices at or beyond the size throw
// InvalidIndexException(index, size - 1).
#pragma once

#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

#include <cstdint>

namespace quarn {

class Property;
struct iPropertyCollection;

namespace detail {

class QUARN_API PropertyTable {
 public:
  /// Up to this many properties lookups scan the hashes; above it they use the index.
  static constexpr unsigned int kLinearLimit = 8;

  PropertyTable() = default;
  ~PropertyTable();
  PropertyTable(PropertyTable const &) = delete;
  PropertyTable &operator=(PropertyTable const &) = delete;

  unsigned int size() const noexcept { return m_items.getSize(); }
  /// Property `i`, borrowed (checked).
  Property *at(unsigned int i) const { return m_items[i]; }
  /// The property named `name`, borrowed, or null.
  Property *find(BaseString<unsigned short> const &name) const noexcept {
    return find(name.getBuffer(), name.getLength());
  }
  Property *find(unsigned short const *units, unsigned int length) const noexcept;

  /// The property `name` of class `valueClass`: the existing one, or a new one
  /// appended (see iPropertyCollection::defineProperty for the failures).
  Property *define(BaseString<unsigned short> const &name, ClassTag const &valueClass);
  /// Appends `property` (defined, with a name not in the table) and takes a reference on it.
  void append(Property *property);
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
  void indexEntry(unsigned int position);
  void rebuildIndex();

  Array<Property *> m_items;
  Array<std::uint32_t> m_hashes;
  /// Empty, or a power of two of slots holding position + 1 (0 = free).
  Array<std::uint32_t> m_index;
};

}  // namespace detail
}  // namespace quarn
