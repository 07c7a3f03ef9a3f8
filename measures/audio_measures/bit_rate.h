#pragma once

#include <cstdint>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kBitRateVersion = 1;
inline constexpr int kFramesVersion = 1;

// bit_rate, bit/s: all bytes of a coded stream, headers too, over the time that it decodes to;
// neither direction is better. samples: per channel, of any rate. Unknown where it decodes to
// nothing.
Figure BitRate(uint64_t bytes, uint64_t samples, int rate);

// frames: coded frames in the stream, as whoever read it counted them; neither direction is better.
Figure Frames(uint64_t frames);

}  // namespace audio_measures
