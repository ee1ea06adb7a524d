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
    detail::PropertyTable read;
    read.reserve(std::min(n, kReserveAhead));
    detail::ElementReader values(in, "DataRecord property");
    for (unsigned int k = 0; k < n; ++k) {
      BaseString<unsigned short> name;
      in >> name;
      if (name.isEmpty()) [[unlikely]]
        throw Exception("DataRecord property %u has no name", k);
      std::uint32_t const hash = detail::PropertyTable::hashName(name.getBuffer(), name.getLength());
      if (read.find(name.getBuffer(), name.getLength(), hash)) [[unlikely]]
        throw Exception("DataRecord property %u repeats the name %ls", k, name.getBuffer());
      ObjPtr<Value> value(values.readValue(k));
      value->deserialize(in);
      Property *property = Property::make(std::move(name), value.detach());
      try {
        read.append(property, hash);  // takes the one reference
      } catch (...) {
        property->deleteInstance();
        throw;
      }
    }
    m_properties.swap(read);  // the old properties are released with `read`
  });
}

}  // namespace quarn
