// iGreeting.h - what the example greeter offers a host
//
// An interface of the object model: a host that made a component by name asks
// it for this interface by tag ("Marlix.interface.iGreeting") and calls it
// through the pointer it gets. The interface's statics live in the example
// component library, so the host needs no link to that library.
#pragma once

#include <quarn/core/Interface.h>
#include <quarnCore/BaseString.h>

namespace example {

struct iGreeting : public quarn::Interface<iGreeting> {
  QUARN_INTERFACE(iGreeting)

  /// "Hello, <who>!"
  virtual quarn::BaseString<char> greet(char const *who) const = 0;
};

}  // namespace example
