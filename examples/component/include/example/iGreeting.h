// iGreeting.h - what the example greeter offers a host
//
// An interface of the object model: a host that made a component by name asks
// it for this interface by tag ("Marlix.interface.iGreeting") and calls it
// through the pointer it gets (object->as<example::iGreeting>()). The
// interface's statics live in libquarnExampleInterfaces, which the component
// library and the host both link; the host never links the component library.
#pragma once

#include <quarn/core/Interface.h>
#include <quarnCore/BaseString.h>

namespace example {

struct QUARN_INTERFACE_API iGreeting : public quarn::Interface<iGreeting> {
  QUARN_INTERFACE(iGreeting)

  /// "Hello, <who>!"
  virtual quarn::BaseString<char> greet(char const *who) const = 0;
};

}  // namespace example
