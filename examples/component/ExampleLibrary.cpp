// ExampleLibrary.cpp - the example component library: its classes and entry point
//
// A component library lists its classes once, in a ComponentLibrary, and
// exports DllCreateInstance, which the class system calls with a class name
// when a host asks for a class that the library's registration files name,
// and DllDescribeLibrary, which tells a tool (quarn inspect, quarn register
// --all) what it serves. The statics of its interfaces live in
// libquarnExampleInterfaces (Interfaces.cpp).
#include <quarn/core/ComponentLibrary.h>

#include "Counter.h"
#include "Greeter.h"
#include "Sampler.h"

namespace {
quarn::ComponentLibrary const library{
    quarn::componentClass<example::Greeter>("Says hello to whoever it is given"),
    quarn::componentClass<example::Counter>("Counts, one instance at a time"),
    quarn::componentClass<example::Sampler>("Draws a scaled random sample into each record"),
};
}  // namespace

/// A new instance of `className` (reference count 0), or null for a name this
/// library does not serve.
extern "C" QUARN_COMPONENT_EXPORT quarn::DynamicObject *DllCreateInstance(char const *className) {
  return library.createInstance(className);
}

/// What this library serves, with descriptions, and the libquarn it was built against.
extern "C" QUARN_COMPONENT_EXPORT quarn::LibraryDescription const *DllDescribeLibrary() { return library.describe(); }
