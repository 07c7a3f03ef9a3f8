#include "audio_measures/alignment.h"

#include <cmath>

#include "audio_measures/delay_choice.h"

namespace audio_measures {

Alignment Align(std::span<const float> reference, std::span<const float> signal, int rate,
                double least, double most) {
  const auto first = static_cast<int64_t>(std::floor(least * rate));
  const auto last = static_cast<int64_t>(std::ceil(most * rate));
  const DelayChoice choice = ChooseDelay(reference, signal, 0, reference.size(), {first, last, {}});
  if (!choice.delay) {
    return {.delay = Unknown(choice.reason), .correlation = Unknown(choice.reason)};
  }
  return {.delay = Known(choice.delay->Later() / rate),
          .correlation = Known(std::fabs(choice.delay->fit.correlation)),
          .peak = choice.delay->lag};
}

}  // namespace audio_measures
