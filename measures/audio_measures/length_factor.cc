#include "audio_measures/length_factor.h"

namespace audio_measures {

Figure LengthFactor(uint64_t input, uint64_t output) {
  if (input == 0 || output == 0) return Unknown(kNoSamples);
  return Known(static_cast<double>(output) / static_cast<double>(input));
}

}  // namespace audio_measures
