// Greeter.h - the example component "Marlix.example.Greeter"
//
// A component: ComponentImpl supplies its class glue (tag, class object,
// identity queries for Greeter, ComponentObject, iComponent and iGreeting,
// creation and deletion); the class adds only what it does.
#pragma once

#include <example/iGreeting.h>
#include <quarn/core/ComponentImpl.h>

namespace example {

class Greeter : public quarn::ComponentImpl<Greeter, iGreeting> {
  QUARN_COMPONENT(Greeter)

 public:
  quarn::BaseString<char> greet(char const *who) const override;
};

}  // namespace example
