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

/// The smallest index: the first one built covers kLinearLimit + 1 entries at most half full.
constexpr unsigned int kMinIndexSlots = 32;

/// Slots for `count` entries at most half full.
unsigned int slotsFor(unsigned int count) noexcept {
  unsigned int slots = kMinIndexSlots;
  while (slots < 2 * count) slots *= 2;
  return slots;
}

[[noreturn, gnu::cold]] void failNoName() { throw Exception("A property needs a name"); }

}  // namespace

PropertyTable::~PropertyTable() { clear(); }

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
  BaseString<unsigned short> const &name = property->getName();
  append(property, hashName(name.getBuffer(), name.getLength()));
}

void PropertyTable::append(Property *property, std::uint32_t hash) {
  // Everything that can fail comes first, so that a failure changes nothing.
  unsigned int const n = m_entries.getSize();
  m_entries.reserve(n + 1);
  Array<std::uint64_t> bigger;
  bool const rebuild = n + 1 > kLinearLimit && m_index.getSize() < 2 * (n + 1);
  if (rebuild) bigger.resize(slotsFor(n + 1));
  BaseString<unsigned short> const &name = property->getName();
  property->addRef();
  m_entries.append(Entry{keyOf(name.getBuffer(), name.getLength()), hash, name.getBuffer(), property});
  if (rebuild) {
    m_index.swap(bigger);
    for (unsigned int i = 0; i <= n; ++i) indexEntry(i);
  } else if (!m_index.isEmpty()) {
    indexEntry(n);
  }
}

void PropertyTable::reserve(unsigned int count) {
  m_entries.reserve(count);
  if (count > kLinearLimit && m_index.getSize() < 2 * count) {
    Array<std::uint64_t> bigger;
    bigger.resize(slotsFor(count));
    m_index.swap(bigger);
    for (unsigned int i = 0; i < m_entries.getSize(); ++i) indexEntry(i);
  }
}

void PropertyTable::indexEntry(unsigned int position) noexcept {
  std::uint64_t *index = m_index.getBuffer();
  unsigned int const mask = m_index.getSize() - 1;
  std::uint32_t const hash = m_entries.getBuffer()[position].hash;
  unsigned int slot = hash & mask;
  while (index[slot] != 0) slot = (slot + 1) & mask;
  index[slot] = std::uint64_t{hash} << 32 | (position + 1);
}

void PropertyTable::rebuildIndex() noexcept {
  if (m_entries.getSize() <= kLinearLimit) {
    m_index.clear();
    return;
  }
  std::memset(m_index.getBuffer(), 0, m_index.getSize() * sizeof(std::uint64_t));
  for (unsigned int i = 0; i < m_entries.getSize(); ++i) indexEntry(i);
}

void PropertyTable::replaceAt(unsigned int i, Property *property) noexcept {
  Entry &e = m_entries.getBuffer()[i];
  Property *gone = e.property;
  property->addRef();
  e.units = property->getName().getBuffer();  // same name, same key and hash
  e.property = property;
  gone->release();
}

void PropertyTable::truncate(unsigned int n) noexcept {
  for (unsigned int size = m_entries.getSize(); size > n; --size) {
    Property *gone = m_entries.getBuffer()[size - 1].property;
    m_entries.resize(size - 1);
    gone->release();
  }
  rebuildIndex();
}

void PropertyTable::removeAt(unsigned int i) {
  Property *gone = m_entries[i].property;
  m_entries.remove(i);
  rebuildIndex();
  gone->release();
}

bool PropertyTable::remove(BaseString<unsigned short> const &name) {
  Property *found = find(name);
  if (!found) return false;
  for (unsigned int i = 0;; ++i)
    if (m_entries.getBuffer()[i].property == found) {
      removeAt(i);
      return true;
    }
}

void PropertyTable::clear() noexcept {
  Array<Entry> entries;
  entries.swap(m_entries);
  m_index.clear();
  for (Entry const &e : entries) e.property->release();
}

void PropertyTable::copyFrom(iPropertyCollection const &source) {
  PropertyTable copy;
  unsigned int const n = source.getPropertyCount();
  copy.reserve(n);
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
  m_entries.swap(other.m_entries);
  m_index.swap(other.m_index);
}

}  // namespace quarn::detail
