// RandomSource.h - the library's random source: reproducible uniform draws
//
// "Marlix.eval.RandomSource" implements iRandom over the standard 64-bit
// Mersenne Twister (std::mt19937_64). Each draw takes the engine's next
// output and keeps its top 53 bits as a double in [0, 1), then scales it to
// the bounds, so a seed gives the same draws with every compiler and standard
// library. Until it is seeded the source runs from the engine's default seed
// (5489), so an unseeded run repeats too.
//
// Counted: create with newInstance() or by name (count 0), hold with
// Ptr<RandomSource>. Not thread-safe: one thread draws from a source at a time.
#pragma once

#include <random>

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Export.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/iRandom.h>

namespace quarn {

class QUARN_API RandomSource : public ObjectImpl<RandomSource, DynamicObject, iRandom> {
  QUARN_COMPONENT(RandomSource)

 public:
  RandomSource() = default;
  ~RandomSource() override;

  double getUniform(double low, double high) override;
  void setSeed(long seed) override;

 private:
  std::mt19937_64 m_engine;
};

}  // namespace quarn
