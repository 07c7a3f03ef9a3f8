#include "desktop/dsp/dynamics/sum_limiter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace desktop {

namespace {

constexpr float kFullScale = 32767;

// The share of what is missing to 1 that the gain wins back with each frame: a time constant of 50
// ms at 44.1 kHz.
constexpr float kRelease = 1.0F / 2205;
// From here on, 0.001 dB, the gain is 1.
constexpr float kNearlyOne = 1 - 1e-4F;

}  // namespace

void SumLimiter::Process(const int32_t* sums, size_t frames, size_t channels, int16_t* out) {
  for (size_t frame = 0; frame < frames; ++frame) {
    int64_t peak = 0;
    for (size_t channel = 0; channel < channels; ++channel) {
      peak = std::max(peak, std::abs(int64_t{sums[frame * channels + channel]}));
    }
    m_gain = m_gain < kNearlyOne ? m_gain + (1 - m_gain) * kRelease : 1;
    // -32768 alone is within range and passes as it is.
    if (peak > 32768) m_gain = std::min(m_gain, kFullScale / static_cast<float>(peak));
    for (size_t channel = 0; channel < channels; ++channel) {
      const int32_t sum = sums[frame * channels + channel];
      const long scaled = m_gain < 1 ? std::lrint(static_cast<float>(sum) * m_gain) : sum;
      out[frame * channels + channel] =
          static_cast<int16_t>(std::clamp<long>(scaled, -32768, 32767));
    }
  }
}

}  // namespace desktop
