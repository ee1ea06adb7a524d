// Foreign.cpp - a component library that says it was built for another libquarn
//
// It loads and serves its class, but its self-description claims the next
// major version of libquarn, so the tool must refuse it.
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/ComponentLibrary.h>

namespace {

class Stranger : public quarn::ComponentImpl<Stranger> {
  QUARN_COMPONENT(Stranger)
};
QUARN_DEFINE_COMPONENT(Stranger, "Marlix.testforeign.Stranger");

quarn::ComponentLibrary const library{quarn::componentClass<Stranger>("From a later libquarn")};

}  // namespace

extern "C" QUARN_COMPONENT_EXPORT quarn::DynamicObject *DllCreateInstance(char const *className) {
  return library.createInstance(className);
}
extern "C" QUARN_COMPONENT_EXPORT quarn::LibraryDescription const *DllDescribeLibrary() {
  return library.describeFor(QUARN_VERSION + 10000);
}
