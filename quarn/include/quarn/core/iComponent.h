// iComponent.h - the interface every pipeline component implements
//
// Its operations are those of the component framework; here it carries only
// the glue of every interface (identity, class object, leak detector).
#pragma once

#include <quarn/core/Interface.h>

namespace quarn {

struct QUARN_API iComponent : public Interface<iComponent> {
  QUARN_INTERFACE(iComponent)
};

}  // namespace quarn
