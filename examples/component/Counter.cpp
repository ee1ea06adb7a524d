// Counter.cpp - the example counter's statics
#include "Counter.h"

namespace example {

QUARN_DEFINE_COMPONENT(Counter, "Marlix.example.Counter");

}  // namespace example
