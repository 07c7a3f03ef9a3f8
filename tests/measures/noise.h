#pragma once

#include <cstddef>
#include <vector>

namespace audio_measures {

// Noise with a normal distribution and an RMS of `rms`, the same for a seed on every machine.
std::vector<float> Noise(size_t samples, double rms, unsigned seed);

// Noise of 200 cosines of random phases up to 0.4 of the rate, `later` samples late: a signal that
// is known between its samples.
std::vector<float> Between(size_t samples, double rms, unsigned seed, double later);

// What of them lies in runs of `on` samples, from the first on; 0 in the `off` samples between
// runs.
std::vector<float> Bursts(std::vector<float> samples, size_t on, size_t off);

// `later` samples later and `gain` times as much, of the same length.
std::vector<float> Later(const std::vector<float>& samples, size_t later, double gain);

std::vector<float> Sum(std::vector<float> a, const std::vector<float>& b);

}  // namespace audio_measures
