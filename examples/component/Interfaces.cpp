// Interfaces.cpp - the statics of the example's interfaces (libquarnExampleInterfaces)
//
// Each interface's tag, class object and leak detector are defined once, in
// this small shared library, which the component library and every host that
// uses the interfaces by type link.
#include <example/iCounter.h>
#include <example/iGreeting.h>
#include <example/iSampler.h>

namespace example {
QUARN_DEFINE_INTERFACE(iGreeting);
QUARN_DEFINE_INTERFACE(iCounter);
QUARN_DEFINE_INTERFACE(iSampler);
}  // namespace example
