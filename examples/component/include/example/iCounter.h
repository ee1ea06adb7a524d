// iCounter.h - what the example counter offers a host
//
// Asked for by tag ("Marlix.interface.iCounter"), like iGreeting. Each
// counter instance counts on its own.
#pragma once

#include <quarn/core/Interface.h>

namespace example {

struct QUARN_INTERFACE_API iCounter : public quarn::Interface<iCounter> {
  QUARN_INTERFACE(iCounter)

  /// Adds one and returns the new count.
  virtual int increment() = 0;
  virtual int getCount() const = 0;
};

}  // namespace example
