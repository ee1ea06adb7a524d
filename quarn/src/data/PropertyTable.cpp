// PropertyTable.cpp - properties in insertion order, found by a hash of their names
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarn/data/Property.h>
#include <quarn/data/PropertyTable.h>
#include <quarnCore/Exception.h>

#include <cstring>

namespace quarn::detail {

namespace {

constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
/// The smallest index: the first one built covers kLinearLimit + 1 entries at most half full.
constexpr unsigned int kMinIndexSlots = 32;

bool sameName(Property const *property, unsigned short const *units, unsigned int length) noexcept {
  BaseString<unsigned short> const &name = property->getName();
  return name.getLength() == length && std::memcmp(name.getBuffer(), units, length * sizeof(unsigned short)) == 0;
}

/// Slots for `count` entries at most half full.
unsigned int slotsFor(unsigned int count) noexcept {
  unsigned int slots = kMinIndexSlots;
  while (slots < 2 * count) slots *= 2;
  return slots;
}

[[noreturn, gnu::cold]] void failNoName() { throw Exception("A property needs a name"); }

}  // namespace

PropertyTable::~PropertyTable() { clear(); }

std::uint32_t PropertyTable::hashName(unsigned short const *units, unsigned int length) noexcept {
  // Four units at a time: xor a word in, multiply, fold the high half down.
  std::uint64_t h = (length + 1) * kMultiplier;
  auto const *bytes = reinterpret_cast<unsigned char const *>(units);
  std::size_t remaining = std::size_t{length} * sizeof(unsigned short);
  while (remaining >= 8) {
    std::uint64_t word;
    std::memcpy(&word, bytes, 8);
    h = (h ^ word) * kMultiplier;
    h ^= h >> 32;
    bytes += 8;
    remaining -= 8;
  }
  if (remaining) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, remaining);
    h = (h ^ word) * kMultiplier;
    h ^= h >> 32;
  }
  return static_cast<std::uint32_t>(h ^ (h >> 29));
}

Property *PropertyTable::find(unsigned short const *units, unsigned int length) const noexcept {
  if (length == 0) return nullptr;  // no property has an empty name
  std::uint32_t const h = hashName(units, length);
  std::uint32_t const *hashes = m_hashes.getBuffer();
  Property *const *items = m_items.getBuffer();
  if (m_index.isEmpty()) {
    unsigned int const n = m_items.getSize();
    for (unsigned int i = 0; i < n; ++i)
      if (hashes[i] == h && sameName(items[i], units, length)) return items[i];
    return nullptr;
  }
  std::uint32_t const *index = m_index.getBuffer();
  unsigned int const mask = m_index.getSize() - 1;
  for (unsigned int slot = h & mask;; slot = (slot + 1) & mask) {
    std::uint32_t entry = index[slot];
    if (entry == 0) return nullptr;
    --entry;
    if (hashes[entry] == h && sameName(items[entry], units, length)) return items[entry];
  }
}

Property *PropertyTable::define(BaseString<unsigned short> const &name, ClassTag const &valueClass) {
  if (name.isEmpty()) [[unlikely]]
    failNoName();
  if (Property *existing = find(name)) {
    ClassTag const &held = existing->getValueClass();
    if (held.getId() != valueClass.getId()) [[unlikely]]
      throw Exception("Property %ls is already defined as %hs, not %hs", name.getBuffer(), held.getName(),
                      valueClass.getName());
    return existing;
  }
  ObjPtr<Object> made(Class::getClassInstance(valueClass));
  auto *value = static_cast<Value *>(made->findAs(Value::Tag));
  if (!value) [[unlikely]]
    throw Exception("Class %hs is not a value", valueClass.getName());  // `made` is handed back
  made.detach();
  Ptr<Property> property(Property::make(name, value));
  append(property.get());
  return property.get();  // the table's reference keeps it
}

void PropertyTable::append(Property *property) {
  // Everything that can fail comes first, so that a failure changes nothing.
  unsigned int const n = m_items.getSize();
  m_items.reserve(n + 1);
  m_hashes.reserve(n + 1);
  Array<std::uint32_t> bigger;
  bool const rebuild = n + 1 > kLinearLimit && m_index.getSize() < 2 * (n + 1);
  if (rebuild) bigger.resize(slotsFor(n + 1));
  BaseString<unsigned short> const &name = property->getName();
  property->addRef();
  m_items.append(property);
  m_hashes.append(hashName(name.getBuffer(), name.getLength()));
  if (rebuild) {
    m_index.swap(bigger);
    for (unsigned int i = 0; i <= n; ++i) indexEntry(i);
  } else if (!m_index.isEmpty()) {
    indexEntry(n);
  }
}

void PropertyTable::indexEntry(unsigned int position) {
  std::uint32_t *index = m_index.getBuffer();
  unsigned int const mask = m_index.getSize() - 1;
  unsigned int slot = m_hashes.getBuffer()[position] & mask;
  while (index[slot] != 0) slot = (slot + 1) & mask;
  index[slot] = position + 1;
}

void PropertyTable::rebuildIndex() {
  if (m_items.getSize() <= kLinearLimit) {
    m_index.clear();
    return;
  }
  std::memset(m_index.getBuffer(), 0, m_index.getSize() * sizeof(std::uint32_t));
  for (unsigned int i = 0; i < m_items.getSize(); ++i) indexEntry(i);
}

void PropertyTable::removeAt(unsigned int i) {
  Property *gone = m_items[i];
  m_items.remove(i);
  m_hashes.remove(i);
  rebuildIndex();
  gone->release();
}

bool PropertyTable::remove(BaseString<unsigned short> const &name) {
  Property *found = find(name);
  if (!found) return false;
  for (unsigned int i = 0;; ++i)
    if (m_items.getBuffer()[i] == found) {
      removeAt(i);
      return true;
    }
}

void PropertyTable::clear() noexcept {
  Array<Property *> items;
  items.swap(m_items);
  m_hashes.clear();
  m_index.clear();
  for (Property *p : items) p->release();
}

void PropertyTable::copyFrom(iPropertyCollection const &source) {
  PropertyTable copy;
  unsigned int const n = source.getPropertyCount();
  for (unsigned int i = 0; i < n; ++i) {
    iProperty const *from = source.getProperty(i);
    BaseString<unsigned short> const &name = from->getName();
    Value const *value = from->getValue();
    if (name.isEmpty()) [[unlikely]]
      failNoName();
    if (!value) [[unlikely]]
      throw Exception("Property %ls has no value", name.getBuffer());
    if (copy.find(name)) [[unlikely]]
      throw Exception("Property %ls appears twice", name.getBuffer());
    Ptr<Property> property(Property::make(name, value->cloneValue()));
    copy.append(property.get());
  }
  swap(copy);  // the old properties are released with `copy`
}

void PropertyTable::swap(PropertyTable &other) noexcept {
  m_items.swap(other.m_items);
  m_hashes.swap(other.m_hashes);
  m_index.swap(other.m_index);
}

}  // namespace quarn::detail
