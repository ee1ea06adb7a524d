// iSampler.h - what the example sampler offers a host
//
// Asked for by tag ("Marlix.interface.iSampler"). The sampler works inside a
// run context: it reads its parameters through the context and draws from
// the context's random source, so a host controls both without knowing the
// component's code.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iContext.h>
#include <quarn/core/iDataRecord.h>

namespace example {

struct QUARN_INTERFACE_API iSampler : public quarn::Interface<iSampler> {
  QUARN_INTERFACE(iSampler)

  /// Draws a number in [0, scale) from the context's random source, where
  /// scale is the current component's parameter "scale" (1 when it has
  /// none), writes it into `record` as the DoubleValue "sample" and returns
  /// it. Throws when the context has no random source.
  virtual double sample(quarn::iContext &context, quarn::iDataRecord &record) = 0;
};

}  // namespace example
