// iDataRecord.h - the data record that flows between pipeline components
//
// A record is a list of named, typed properties. The object that implements
// iDataRecord also implements iPropertyCollection: findAs(
// iPropertyCollection::Tag) on a record answers with its properties, which
// getPropertyList hands out directly. The record's byte-stream form is its
// object's serialize / deserialize (the library's DataRecord documents its
// bytes).
//
// Ownership, the same for every data interface: every pointer an operation
// hands out is borrowed; the record keeps it, and a caller that keeps it
// longer than the record takes a reference with addRef.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iPropertyCollection.h>

namespace quarn {

struct QUARN_API iDataRecord : public Interface<iDataRecord> {
  QUARN_INTERFACE(iDataRecord)

  /// 1. The record's properties, borrowed; never null.
  virtual iPropertyCollection *getPropertyList() const = 0;
  /// 2. Replaces this record's properties with copies of `source`'s (names,
  ///    value classes, values and order), whatever implements `source`.
  ///    Copying a record onto itself changes nothing. On failure the record
  ///    keeps its old properties.
  virtual void copyFrom(iDataRecord const &source) = 0;
};

}  // namespace quarn
