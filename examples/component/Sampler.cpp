// Sampler.cpp - the example sampler: a parameter and a random draw per record
#include "Sampler.h"

#include <quarn/data/PropertyHelpers.h>
#include <quarn/eval/ContextParamsPushPop.h>
#include <quarn/eval/ExpressionContext.h>
#include <quarn/value/Value.h>

namespace example {

QUARN_DEFINE_COMPONENT(Sampler, "Marlix.example.Sampler");

double Sampler::sample(quarn::iContext &context, quarn::iDataRecord &record) {
  using Name = quarn::BaseString<unsigned short>;
  // This component's parameters are current for this record until the end of the block.
  quarn::ContextParamsPushPop params(&context, context.getComponentInfo(), &record);
  quarn::iProperty const *scale = context.findParameter(Name("scale"));
  // What an evaluator is given: the run context, the record's properties, the run's random source.
  quarn::ExpressionContext expression(&context, &record, context.getRandom(), context.getRunnerSoap());
  double const draw = expression.getRandomDouble() * (scale ? scale->getValue()->getDouble() : 1.0);
  quarn::util::defineDoubleValue(*expression.getPropertyList(), Name("sample"), draw);
  return draw;
}

}  // namespace example
