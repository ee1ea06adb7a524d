// iProperty.h - one named property holding one typed value
//
// A property has a name, a declared value class and one value of that class,
// which it owns. Assigning into a property goes through Value::assignTo, so a
// property keeps its declared class: a value of another class is converted
// by the converter registry or refused with its message ("Could not convert
// from %hs to %hs").
//
// Ownership, the same for every data interface (iProperty,
// iPropertyCollection, iDataRecord, iNode, iDataTree): every pointer or
// reference an operation hands out is borrowed. The object that hands it out
// keeps it, and it stays valid for as long as that object holds it (until
// the property is removed, the list cleared, the child removed, or the
// holder released). A caller that keeps an object longer takes a reference
// of its own with addRef (Ptr<T> does it). An operation that keeps an object
// passed to it takes its own reference; values are copied, never adopted.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class Value;

struct QUARN_API iProperty : public Interface<iProperty> {
  QUARN_INTERFACE(iProperty)

  /// 1. The property's name (case-sensitive), borrowed.
  virtual BaseString<unsigned short> const &getName() const = 0;
  /// 2. The class of the value it holds, fixed when it was defined.
  virtual ClassTag const &getValueClass() const = 0;
  /// 3. The value it holds, borrowed; never null once the property is defined
  ///    (every property a collection hands out is defined).
  virtual Value *getValue() const = 0;
  /// 4. Makes the held value equal `value` in the declared class
  ///    (value.assignTo(*getValue())); throws the converter registry's message
  ///    when no conversion exists, and leaves the held value unchanged.
  virtual void setValue(Value const &value) = 0;
};

}  // namespace quarn
