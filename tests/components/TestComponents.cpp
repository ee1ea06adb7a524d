// TestComponents.cpp - a real component library for the core tests
//
// Serves "Marlix.testlib.Widget" (a component that is also an iNode and an
// iDataTree) and "Marlix.testlib.PropertyBag" (a property list of its own,
// PropertyBag.h) through its class table. So that every test can register a
// class name of its own, any name that starts with "Marlix.testlib.any." is
// served by an Echo and any that starts with "Marlix.testlib.bag." by a
// PropertyBag; a name that starts with "Marlix.testlib.throw." makes the
// entry point throw. It describes itself (DllDescribeLibrary).
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/Interfaces.h>
#include <quarnCore/Exception.h>

#include <cstring>

#include "PropertyBag.h"

namespace {

class Widget : public quarn::ComponentImpl<Widget, quarn::iNode, quarn::iDataTree> {
  QUARN_COMPONENT(Widget)
};
QUARN_DEFINE_COMPONENT(Widget, "Marlix.testlib.Widget");

class Echo : public quarn::ComponentImpl<Echo> {
  QUARN_COMPONENT(Echo)
};
QUARN_DEFINE_COMPONENT(Echo, "Marlix.testlib.Echo");

}  // namespace

QUARN_DEFINE_COMPONENT(quarn::test::BagProperty, "Marlix.testlib.BagProperty");
QUARN_DEFINE_COMPONENT(quarn::test::PropertyBag, "Marlix.testlib.PropertyBag");

namespace {

quarn::ComponentLibrary const library{
    quarn::componentClass<Widget>("A widget for the tests"),
    quarn::componentClass<Echo>("Made for any name under Marlix.testlib.any.", true),
    quarn::componentClass<quarn::test::PropertyBag>("A property list of the test library's own"),
};

bool startsWith(char const *text, char const *prefix) {
  return text && std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

}  // namespace

extern "C" QUARN_COMPONENT_EXPORT quarn::DynamicObject *DllCreateInstance(char const *className) {
  if (startsWith(className, "Marlix.testlib.throw.")) throw quarn::Exception("The test library refuses %hs", className);
  if (startsWith(className, "Marlix.testlib.any.")) return library.createInstance("Marlix.testlib.Echo");
  if (startsWith(className, "Marlix.testlib.bag.")) return library.createInstance("Marlix.testlib.PropertyBag");
  return library.createInstance(className);
}

extern "C" QUARN_COMPONENT_EXPORT quarn::LibraryDescription const *DllDescribeLibrary() { return library.describe(); }
