#include "audio_measures/alignment.h"

#include <cmath>

#include "audio_measures/delay_choice.h"

namespace audio_measures {

namespace {

Alignment NoAlignment(const char* reason) {
  return {Unknown(reason), Unknown(reason), Unknown(reason), Unknown(reason)};
}

}  // namespace

Alignment Align(std::span<const float> reference, std::span<const float> signal, int rate,
                double least, double most) {
  if (reference.empty() || signal.empty()) return NoAlignment(kNoSamples);
  const auto first = static_cast<int64_t>(std::floor(least * rate));
  const auto last = static_cast<int64_t>(std::ceil(most * rate));
  const DelayChoice choice = ChooseDelay(reference, signal, 0, reference.size(), {first, last, {}});
  if (!choice.delay) return NoAlignment(choice.reason);
  const PhaseFit::Fit& fit = choice.delay->fit;
  return {.delay = Known(choice.delay->Later() / rate),
          .gain = Known(20 * std::log10(std::fabs(fit.gain))),
          .polarity = Known(fit.gain < 0 ? -1 : 1),
          .correlation = Known(std::fabs(fit.correlation))};
}

}  // namespace audio_measures
