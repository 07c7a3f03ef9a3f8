#pragma once

#include <cstddef>
#include <vector>

namespace audio_measures {

// Noise with a normal distribution and an RMS of `rms`, the same for a seed on every machine.
std::vector<float> Noise(size_t samples, double rms, unsigned seed);

// Noise of 200 cosines of random phases up to 0.4 of the rate, `later` samples late: a signal that
// is known between its samples.
std::vector<float> Between(size_t samples, double rms, unsigned seed, double later);

}  // namespace audio_measures
