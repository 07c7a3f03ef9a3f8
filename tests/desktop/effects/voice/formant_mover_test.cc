#include "desktop/effects/voice/formant_mover.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr int kRate = 16000;

Doubles Moved(const Doubles& in, double ratio) {
  desktop::FormantMover mover(ratio, kRate, 1);
  std::vector<float> samples(in.begin(), in.end());
  samples.resize(samples.size() + mover.Latency());
  float* const rows[] = {samples.data()};
  mover.Process(rows, samples.size());
  return {samples.begin() + static_cast<std::ptrdiff_t>(mover.Latency()), samples.end()};
}

constexpr double kPitch = 125;

// Harmonics of 125 Hz: the 6th to the 10th, around a formant at 1 kHz, with one amplitude, all
// others with another one.
Doubles Voice(double loud, double others, double seconds) {
  Doubles voice(static_cast<size_t>(seconds * kRate));
  for (int h = 1; h < 60; ++h) {
    const double amplitude = h >= 6 && h <= 10 ? loud : others;
    for (size_t i = 0; i < voice.size(); ++i) {
      const double turns = h * kPitch * static_cast<double>(i) / kRate;
      voice[i] += amplitude * std::sin(2 * std::numbers::pi * turns + h * h);
    }
  }
  return voice;
}

// By how many dB a harmonic is changed, two waves of the voice from a time on.
double Gain(const Doubles& in, const Doubles& out, int harmonic, double second) {
  const auto first = static_cast<size_t>(second * kRate);
  const auto level = [&](const Doubles& sound) {
    return AmplitudeAt({&sound[first], 256}, harmonic * kPitch, kRate);
  };
  return Decibels(level(out) / level(in));
}

// A formant that moves to where the voice has nothing may not bring up the hiss there, and what it
// leaves behind does not become a hole.
TEST(FormantMover, ChangesNoPartOfTheSoundTooFar) {
  const Doubles in = Voice(0.1, 0.0001, 1);
  const Doubles up = Moved(in, 4);
  EXPECT_NEAR(Gain(in, up, 32, 0.5), 18, 1);
  EXPECT_NEAR(Gain(in, up, 8, 0.5), -30, 1);
  const Doubles down = Moved(in, 0.25);
  EXPECT_NEAR(Gain(in, down, 2, 0.5), 18, 1);
  EXPECT_NEAR(Gain(in, down, 8, 0.5), -30, 1);
}

// Where one vowel follows on another, its formants are where they belong within a window of the
// transform and not a syllable later.
TEST(FormantMover, FollowsAChangeOfVowelAtOnce) {
  Doubles in = Voice(0.02, 0.02, 0.504);
  const Doubles vowel = Voice(0.1, 0.0001, 0.504);
  in.insert(in.end(), vowel.begin(), vowel.end());
  const Doubles out = Moved(in, 4);
  EXPECT_NEAR(Gain(in, out, 8, 0.4), 0, 1);
  EXPECT_NEAR(Gain(in, out, 8, 0.9), -30, 1);
  EXPECT_LT(Gain(in, out, 8, 0.504 + 0.056), -26);
}

}  // namespace
