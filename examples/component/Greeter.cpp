// Greeter.cpp - the example greeter
#include "Greeter.h"

#include <cstring>

namespace example {

QUARN_DEFINE_COMPONENT(Greeter, "Marlix.example.Greeter");

quarn::BaseString<char> Greeter::greet(char const *who) const {
  if (!who || !*who) who = "world";
  quarn::BaseString<char> text("Hello, ");
  text.append(who, static_cast<unsigned int>(std::strlen(who)));
  text.append('!');
  return text;
}

}  // namespace example
