// RandomSource.cpp - uniform draws from a 64-bit Mersenne Twister
#include <quarn/eval/RandomSource.h>

#include <cmath>
#include <cstdint>

namespace quarn {

QUARN_DEFINE_COMPONENT(RandomSource, "Marlix.eval.RandomSource");

RandomSource::~RandomSource() = default;

double RandomSource::getUniform(double low, double high) {
  double const unit = static_cast<double>(m_engine() >> 11) * 0x1.0p-53;  // [0, 1), 53 bits
  double const draw = low + unit * (high - low);
  // Rounding may land on the excluded bound; step back inside.
  if (draw == high && high != low) [[unlikely]]
    return std::nextafter(high, low);
  return draw;
}

void RandomSource::setSeed(long seed) { m_engine.seed(static_cast<std::uint64_t>(seed)); }

}  // namespace quarn
