// DataRecord.cpp - a record's copies and its byte-stream form
#include <quarn/core/Annotate.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataRecord.h>
#include <quarn/value/ByteStream.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "../value/ElementByName.h"
#include "../value/NarrowText.h"

namespace quarn {

namespace {

/// Properties reserved before reading: a count read from a stream is trusted only this far.
constexpr unsigned int kReserveAhead = 64;

/// This thread's buffer for the property names being read, kept from one
/// record to the next so that reading them allocates nothing once warm.
thread_local BaseString<unsigned short> t_names;

/// Takes this thread's name buffer for as long as it lives (a record read
/// inside another's value gets a buffer of its own).
struct NameBuffer {
  BaseString<unsigned short> units;
  NameBuffer() noexcept { units.swap(t_names); }
  ~NameBuffer() { t_names.swap(units); }
  NameBuffer(NameBuffer const &) = delete;
  NameBuffer &operator=(NameBuffer const &) = delete;
};

void readPropertyName(iByteInputStream &in, BaseString<unsigned short> &name, unsigned int k) {
  in >> name;
  if (name.isEmpty()) [[unlikely]]
    throw Exception("DataRecord property %u has no name", k);
}

bool sameName(BaseString<unsigned short> const &a, BaseString<unsigned short> const &b) noexcept {
  return a.getLength() == b.getLength() &&
         std::memcmp(a.getBuffer(), b.getBuffer(), a.getLength() * sizeof(unsigned short)) == 0;
}

/// Reads property `k`'s value, whose name the stream gave as `held`'s
/// property `k` has it: into the value the property holds when the stream
/// names its class exactly as the class spells itself, else into a new value
/// that a new property of the same name holds in its place. A failure leaves
/// the property in place, holding a value as valid as that value's own
/// deserialize leaves it.
void readValueInPlace(iByteInputStream &in, detail::ElementReader &values, detail::PropertyTable &held,
                      unsigned int k) {
  detail::ElementReader::Scratch scratch;
  detail::ElementReader::Name const className = values.readName(k, scratch);
  Property *property = held.at(k);
  Value *value = property->getValue();
  ClassTag const &tag = value->getClassTag();  // its name is the spelling written for it
  if (tag.getNameLength() == className.length && std::memcmp(tag.getName(), className.bytes, className.length) == 0)
      [[likely]] {
    value->deserialize(in);
    return;
  }
  ObjPtr<Value> made(values.makeValue(className, k));
  made->deserialize(in);
  Property *fresh = Property::make(property->getName(), made.detach());
  held.replaceAt(k, fresh);
}

}  // namespace

QUARN_DEFINE_COMPONENT(DataRecord, "Marlix.data.DataRecord");

DataRecord::~DataRecord() = default;

Object *DataRecord::clone() const {
  DataRecord *copy = newInstance();
  try {
    copy->m_properties.copyFrom(*this);
  } catch (...) {
    copy->deleteInstance();
    throw;
  }
  return copy;
}

iPropertyCollection *DataRecord::getPropertyList() const {
  return const_cast<iPropertyCollection *>(static_cast<iPropertyCollection const *>(this));
}

void DataRecord::copyFrom(iDataRecord const &source) {
  iPropertyCollection const *from = source.getPropertyList();
  if (from == getPropertyList()) return;
  m_properties.copyFrom(*from);
}

void DataRecord::serialize(iByteOutputStream &out) const {
  out << kStreamVersion << static_cast<int>(m_properties.size());
  for (unsigned int i = 0; i < m_properties.size(); ++i) {
    Property const *property = m_properties.at(i);
    Value const *value = property->getValue();
    char const *className = value->getClassTag().getName();
    out << property->getName();
    detail::writeNarrowText(out, className, static_cast<unsigned int>(std::strlen(className)));
    value->serialize(out);
  }
}

void DataRecord::deserialize(iByteInputStream &in) {
  detail::annotated("DataRecord", "deserialize", [&] {
    int version, count;
    in >> version;
    if (version != kStreamVersion) [[unlikely]]
      throw Exception("Unsupported DataRecord version %d", version);
    in >> count;
    if (count < 0) [[unlikely]]
      throw Exception("Invalid property count %d in DataRecord", count);
    auto const n = static_cast<unsigned int>(count);
    NameBuffer name;
    detail::ElementReader values(in, "DataRecord property");
    detail::PropertyTable &held = m_properties;
    // While the stream names this record's properties in the order it holds
    // them (a pooled record read again), each value is read into the property
    // that has it: into the value itself when the class is the same.
    unsigned int k = 0;
    for (; k < n; ++k) {
      readPropertyName(in, name.units, k);
      if (k >= held.size()) break;
      Property *property = held.at(k);
      if (!sameName(property->getName(), name.units)) break;
      readValueInPlace(in, values, held, k);
    }
    if (k == n) {
      if (n < held.size()) held.truncate(n);
      return;
    }
    // Other names: a new table with the properties read so far, then the
    // rest, which replaces the record's once everything is in.
    detail::PropertyTable read;
    read.reserve(std::max(k + 1, std::min(n, kReserveAhead)));
    for (unsigned int i = 0; i < k; ++i) read.append(held.at(i));
    for (;; readPropertyName(in, name.units, k)) {
      std::uint32_t const hash = detail::PropertyTable::hashName(name.units.getBuffer(), name.units.getLength());
      if (read.find(name.units.getBuffer(), name.units.getLength(), hash)) [[unlikely]]
        throw Exception("DataRecord property %u repeats the name %ls", k, name.units.getBuffer());
      ObjPtr<Value> value(values.readValue(k));
      value->deserialize(in);
      Property *property = Property::make(std::move(name.units), value.detach());
      try {
        read.append(property, hash);  // takes the one reference
      } catch (...) {
        property->deleteInstance();
        throw;
      }
      if (++k == n) break;
    }
    m_properties.swap(read);  // the old properties are released with `read`
  });
}

}  // namespace quarn
