// iRandom.h - a source of random numbers for the expressions of a run
//
// What an expression's random functions draw from. A source that is seeded
// with the same number gives the same sequence again, so that a run can be
// repeated. The library's implementation is the class
// "Marlix.eval.RandomSource"; a run context hands its source out with
// iContext::getRandom.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>

namespace quarn {

struct QUARN_API iRandom : public Interface<iRandom> {
  QUARN_INTERFACE(iRandom)

  /// 1. The next draw, uniform between `low` (included) and `high`
  ///    (excluded); `low` itself when the two are equal, and between them
  ///    the other way round when `high` is below `low`.
  virtual double getUniform(double low, double high) = 0;
  /// 2. Restarts the sequence from `seed`: the draws that follow are the
  ///    same for the same seed.
  virtual void setSeed(long seed) = 0;
};

}  // namespace quarn
