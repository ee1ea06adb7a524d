// DataRecord.h - the library's data record: named, typed properties with a byte-stream form
//
// "Marlix.data.DataRecord" implements iDataRecord and iPropertyCollection (the
// record is its own property list). Create it with newInstance() or by name;
// it starts empty with a count of 0. clone() makes a new record (count 0)
// holding copies of the properties.
//
// Byte-stream form (serialize / deserialize):
//   the format version (1) as a stream int, the property count as a stream
//   int, then per property: its name as a stream string, its value's class
//   name framed as in a value array (L = bytes + 1 as a stream int, then the
//   bytes without a terminator), then the value's own payload. One property
//   "n" holding IntegerValue 7, stream version 2:
//     04  04  08 6E  01 1A "Marlix.value.IntegerValue" (25 bytes)  1C
// Reading makes each value by its class name (a bound class, else the
// component library registered for it) with the limits of value arrays, and
// trusts nothing: a version other than 1 throws "Unsupported DataRecord
// version %d"; a negative count "Invalid property count %d in DataRecord" (a
// count reserves nothing up front); a null or empty name "DataRecord property
// %u has no name"; a repeated name "DataRecord property %u repeats the name
// %ls"; a bad class name the value array's messages ("DataRecord property %u
// has no class name", "Class %hs not registered.", "Class %hs is not a
// value", ...); a short stream the primitive's EOF message. Every failure is
// annotated "DataRecord::deserialize: Tessary exception caught" and releases
// what was read; the record keeps its properties (same names, same order),
// though values the stream named again in the same place may hold what was
// read into them. Reading a record again from a stream that names its
// properties in the order it holds them (a pooled record, a record read in a
// loop) reads each value into the property that holds it, into the value
// itself when the stream names its class: no allocation once warm.
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Export.h>
#include <quarn/core/iDataRecord.h>
#include <quarn/data/PropertyListImpl.h>

namespace quarn {

/// Counted: create with newInstance() (count 0), hold with Ptr<DataRecord>.
class QUARN_API DataRecord : public PropertyListImpl<DataRecord, iDataRecord> {
  QUARN_COMPONENT(DataRecord)

 public:
  /// The version written first in the byte-stream form.
  static constexpr int kStreamVersion = 1;

  DataRecord() = default;
  ~DataRecord() override;

  /// A new record (count 0) with copies of this one's properties.
  Object *clone() const override;
  void serialize(iByteOutputStream &out) const override;
  void deserialize(iByteInputStream &in) override;

  // ---- iDataRecord

  /// This record itself.
  iPropertyCollection *getPropertyList() const override;
  void copyFrom(iDataRecord const &source) override;
};

}  // namespace quarn
