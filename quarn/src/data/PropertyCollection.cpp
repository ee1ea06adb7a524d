// PropertyCollection.cpp - the class statics of the free-standing property list
#include <quarn/data/PropertyCollection.h>

namespace quarn {

QUARN_DEFINE_COMPONENT(PropertyCollection, "Marlix.data.PropertyCollection");

PropertyCollection::~PropertyCollection() = default;

}  // namespace quarn
