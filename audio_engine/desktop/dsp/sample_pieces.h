#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace desktop {

constexpr int kMostEffectChannels = 2;

// The longest run of frames that ProcessInPieces hands over at once.
constexpr int kPieceFrames = 256;

// The 16-bit value next to a float of full scale 1, clipped to the range.
inline short ToSample16(float value) {
  return static_cast<short>(std::lrint(std::clamp(value * 32768.0f, -32768.0f, 32767.0f)));
}

// Runs `effect(float* const* rows, int frames)` over interleaved integers of the 16-bit range in
// place: each row holds a channel of the piece as floats of full scale 1. `samples` may lie at any
// address. At most kMostEffectChannels channels; a float that the effect leaves alone comes back
// as the very integer.
template <typename Sample, typename Effect>
void ProcessInPieces(char* samples, int frames, int channels, Effect&& effect) {
  float planar[kMostEffectChannels][kPieceFrames];
  float* const rows[kMostEffectChannels] = {planar[0], planar[1]};
  const size_t frameBytes = sizeof(Sample) * static_cast<size_t>(channels);
  for (int done = 0; done < frames; done += kPieceFrames) {
    const int count = std::min(kPieceFrames, frames - done);
    char* const piece = samples + frameBytes * static_cast<size_t>(done);
    for (int c = 0; c < channels; ++c) {
      const char* from = piece + sizeof(Sample) * static_cast<size_t>(c);
      for (int i = 0; i < count; ++i, from += frameBytes) {
        Sample sample;
        std::memcpy(&sample, from, sizeof sample);
        rows[c][i] = static_cast<float>(sample) * (1.0f / 32768.0f);
      }
    }
    effect(rows, count);
    for (int c = 0; c < channels; ++c) {
      char* to = piece + sizeof(Sample) * static_cast<size_t>(c);
      for (int i = 0; i < count; ++i, to += frameBytes) {
        const Sample sample = ToSample16(rows[c][i]);
        std::memcpy(to, &sample, sizeof sample);
      }
    }
  }
}

}  // namespace desktop
