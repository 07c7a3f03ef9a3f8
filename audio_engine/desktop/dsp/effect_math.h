#pragma once

#include <algorithm>
#include <cmath>

namespace desktop {

// The 16-bit sample next to a value on the same scale; beyond full scale it is clipped.
inline short ToSample(float value) {
  return static_cast<short>(std::lrint(std::clamp(value, -32768.0f, 32767.0f)));
}

// The ratio of amplitudes that so many dB are.
inline double FromDecibels(double decibels) { return std::pow(10.0, decibels / 20); }

// The value brought into a range; what is no number counts as the lowest.
inline float InRange(float value, float lowest, float highest) {
  return value >= lowest ? std::min(value, highest) : lowest;
}

// The share of the way that a smoother with this time constant goes per sample; 0 ms: all of it.
inline double SmoothingStep(double milliseconds, int sampleRate) {
  return milliseconds > 0 ? 1 - std::exp(-1000.0 / (milliseconds * sampleRate)) : 1;
}

}  // namespace desktop
