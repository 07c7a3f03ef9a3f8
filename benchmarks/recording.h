#pragma once

#include <cstddef>

#include "noise.h"

inline constexpr int kRecordingRate = 44100;  // Hz.

// The next `count` samples of a stereo recording of noise. Its peaks at -24 dBFS leave room for the
// gain of a head-related response.
inline void FillRecording(Noise& noise, short* samples, size_t count) {
  for (size_t i = 0; i < count; ++i) samples[i] = static_cast<short>(noise.Next() / 16);
}

// Writes a headerless 16-bit stereo recording, the same bytes every time. False when that fails.
bool WriteRecording(const char* name, int seconds);
