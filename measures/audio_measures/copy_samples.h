#pragma once

#include <cstdint>
#include <span>

namespace audio_measures {

// Fills `to` with samples from `first` on, with 0 beyond both ends.
void CopySamples(std::span<const float> samples, int64_t first, std::span<float> to);

}  // namespace audio_measures
