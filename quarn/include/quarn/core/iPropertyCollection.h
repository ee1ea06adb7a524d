// iPropertyCollection.h - an ordered list of properties looked up by name
//
// The properties of a record, of a tree node, of a component's parameters or
// of an expression's locals. Properties keep their insertion order; names are
// unique in a list and matched exactly (case-sensitive, unit by unit). Lookup
// by name is the hot path: implementations keep it fast for lists of a few
// dozen properties. The library's implementation is the class
// "Marlix.data.PropertyCollection"; records and nodes implement this
// interface too.
//
// Ownership, the same for every data interface: every pointer an operation
// hands out is borrowed. The list keeps the property, and the pointer stays
// valid until the property is removed, the list cleared or the list released;
// take a reference with addRef to keep it longer.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iProperty.h>
#include <quarnCore/BaseString.h>

namespace quarn {

struct QUARN_API iPropertyCollection : public Interface<iPropertyCollection> {
  QUARN_INTERFACE(iPropertyCollection)

  /// 1. The number of properties.
  virtual unsigned int getPropertyCount() const = 0;
  /// 2. Property `i` in insertion order, borrowed; an index at or beyond the
  ///    count throws InvalidIndexException(i, count - 1).
  virtual iProperty *getProperty(unsigned int i) const = 0;
  /// 3. The property named exactly `name`, borrowed, or null when there is none.
  virtual iProperty *findProperty(BaseString<unsigned short> const &name) const = 0;
  /// 4. The property named `name` holding a value of class `valueClass`,
  ///    borrowed. A new property is appended holding a fresh (cleared) value
  ///    made through the class of `valueClass`. An existing property of the
  ///    same class is returned as it is; one of another class throws
  ///    "Property %ls is already defined as %hs, not %hs" (name, its class,
  ///    the class asked for). An empty name throws "A property needs a name";
  ///    a class that makes no value throws "Class %hs is not a value"; an
  ///    unknown class, "Class %hs not registered.". Nothing changes on failure.
  virtual iProperty *defineProperty(BaseString<unsigned short> const &name, ClassTag const &valueClass) = 0;
  /// 5. Removes property `i` (later ones move forward); an index at or beyond
  ///    the count throws InvalidIndexException(i, count - 1).
  virtual void removePropertyAt(unsigned int i) = 0;
  /// 6. Removes the property named `name`; false when there is none.
  virtual bool removeProperty(BaseString<unsigned short> const &name) = 0;
  /// 7. Removes every property.
  virtual void clearProperties() = 0;
};

}  // namespace quarn
