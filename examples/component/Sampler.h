// Sampler.h - the example component "Marlix.example.Sampler"
//
// A component that runs inside a run context: per record it makes its
// parameters current (ContextParamsPushPop), reads "scale" through the
// context and draws through an expression context, as an expression
// evaluator would.
#pragma once

#include <example/iSampler.h>
#include <quarn/core/ComponentImpl.h>

namespace example {

class Sampler : public quarn::ComponentImpl<Sampler, iSampler> {
  QUARN_COMPONENT(Sampler)

 public:
  double sample(quarn::iContext &context, quarn::iDataRecord &record) override;
};

}  // namespace example
