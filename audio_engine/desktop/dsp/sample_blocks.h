#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"

namespace desktop {

constexpr int kMaxEffectChannels = 2;

// The longest block that ProcessInBlocks hands over.
constexpr size_t kMaxEffectFrames = 256;

// The 16-bit sample next to a float of full scale 1; beyond full scale it is clipped.
inline short ToSample16(float value) { return ToSample(value * 32768.0f); }

// Runs `effect(float* const* rows, size_t frames)` over interleaved integers of the 16-bit range in
// place: each row holds a channel of a block as floats of full scale 1. `samples` may lie at any
// address. At most kMaxEffectChannels channels; a float that the effect leaves alone comes back as
// the very integer.
template <typename Sample, typename Effect>
void ProcessInBlocks(char* samples, int samplesPerChannel, int channelCount, Effect&& effect) {
  float planar[kMaxEffectChannels][kMaxEffectFrames];
  float* const rows[kMaxEffectChannels] = {planar[0], planar[1]};
  const size_t channels = Size(channelCount);
  const size_t frameBytes = sizeof(Sample) * channels;
  for (size_t left = Size(samplesPerChannel); left > 0;) {
    const size_t count = std::min(kMaxEffectFrames, left);
    for (size_t c = 0; c < channels; ++c) {
      const char* from = samples + sizeof(Sample) * c;
      for (size_t i = 0; i < count; ++i, from += frameBytes) {
        Sample sample;
        std::memcpy(&sample, from, sizeof sample);
        rows[c][i] = static_cast<float>(sample) * (1.0f / 32768.0f);
      }
    }
    effect(rows, count);
    for (size_t c = 0; c < channels; ++c) {
      char* to = samples + sizeof(Sample) * c;
      for (size_t i = 0; i < count; ++i, to += frameBytes) {
        const Sample sample = ToSample16(rows[c][i]);
        std::memcpy(to, &sample, sizeof sample);
      }
    }
    samples += frameBytes * count;
    left -= count;
  }
}

}  // namespace desktop
