// PropertyCollection.h - a free-standing list of named, typed properties
//
// "Marlix.data.PropertyCollection": the library's iPropertyCollection on its
// own, for component parameters, run-level properties and expression locals.
// Create it with newInstance() or by name (Class::getClassInstance(
// ClassTag("Marlix.data.PropertyCollection"))); it starts empty with a count
// of 0. Lookup by name is fast for lists of a few dozen properties
// (PropertyTable.h).
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Export.h>
#include <quarn/data/PropertyListImpl.h>

namespace quarn {

/// Counted: create with newInstance() (count 0), hold with Ptr<PropertyCollection>.
class QUARN_API PropertyCollection : public PropertyListImpl<PropertyCollection> {
  QUARN_COMPONENT(PropertyCollection)

 public:
  PropertyCollection() = default;
  ~PropertyCollection() override;
};

}  // namespace quarn
