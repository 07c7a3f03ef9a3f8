#include "audio_measures/bit_rate.h"

namespace audio_measures {

Figure BitRate(uint64_t bytes, uint64_t samples, int rate) {
  if (samples == 0) return Unknown(kNoSamples);
  return Known(8 * static_cast<double>(bytes) * rate / static_cast<double>(samples));
}

Figure Frames(uint64_t frames) { return Known(static_cast<double>(frames)); }

}  // namespace audio_measures
