#pragma once

#include <cstdint>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kLengthFactorVersion = 1;

// length_factor: how many times as long as the input the output is, both in samples of one channel
// and of one rate; neither direction is better. Unknown where one of them is empty.
Figure LengthFactor(uint64_t input, uint64_t output);

}  // namespace audio_measures
