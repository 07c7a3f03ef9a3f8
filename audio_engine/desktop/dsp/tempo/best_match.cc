#include "desktop/dsp/tempo/best_match.h"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

// A power at which 16-bit samples count as silence, so that no quotient is taken of rounding noise.
constexpr double kSilence = 1e-3;

double Likeness(const float* a, const float* b, size_t length, size_t step, size_t channels) {
  double product = 0;
  double powerA = 0;
  double powerB = 0;
  for (size_t frame = 0; frame < length; frame += step) {
    for (size_t i = frame * channels; i < (frame + 1) * channels; ++i) {
      const double x = a[i];
      const double y = b[i];
      product += x * y;
      powerA += x * x;
      powerB += y * y;
    }
  }
  if (powerA < kSilence && powerB < kSilence) return 1;
  return product / std::sqrt(std::max(powerA * powerB, kSilence * kSilence));
}

}  // namespace

Match BestMatch(const float* pattern, size_t length, const float* field, size_t places, size_t step,
                size_t channels) {
  Match best = {0, -2};
  for (size_t place = 0; place < places; place += step) {
    const double likeness = Likeness(pattern, field + place * channels, length, step, channels);
    if (likeness > best.likeness) best = {place, likeness};
  }
  const size_t first = best.place >= step ? best.place - step + 1 : 0;
  const size_t last = std::min(best.place + step, places);
  best.likeness = -2;
  for (size_t place = first; place < last; ++place) {
    const double likeness = Likeness(pattern, field + place * channels, length, 1, channels);
    if (likeness > best.likeness) best = {place, likeness};
  }
  return best;
}

}  // namespace desktop
