// Unresolved.cpp - a library that needs a symbol nobody defines
//
// Built without -z defs, so it links; loading it fails on the missing
// interface statics, which is what the tool must explain.
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/Interface.h>

namespace acme {
struct iScaler : public quarn::Interface<iScaler> {
  QUARN_INTERFACE(iScaler)
};
}  // namespace acme

extern "C" QUARN_COMPONENT_EXPORT quarn::DynamicObject *DllCreateInstance(char const *) {
  static_cast<void>(acme::iScaler::Tag.getName());  // needs acme::iScaler::Tag
  return nullptr;
}
