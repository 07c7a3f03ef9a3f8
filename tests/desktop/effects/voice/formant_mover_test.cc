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

// Harmonics of `pitch` Hz up to 7.5 kHz: those around a formant at 1 kHz with one amplitude, all
// others with another one.
Doubles Voice(double loud, double others, double seconds, double pitch = kPitch,
              double halfWidth = 250) {
  Doubles voice(static_cast<size_t>(seconds * kRate));
  for (int h = 1; h * pitch < 7500; ++h) {
    const double amplitude = std::abs(h * pitch - 1000) <= halfWidth ? loud : others;
    for (size_t i = 0; i < voice.size(); ++i) {
      const double turns = h * pitch * static_cast<double>(i) / kRate;
      voice[i] += amplitude * std::sin(2 * std::numbers::pi * turns + h * h);
    }
  }
  return voice;
}

// By how many dB a harmonic is changed, two or more waves of the voice from a time on.
double Gain(const Doubles& in, const Doubles& out, int harmonic, double second,
            double pitch = kPitch) {
  const auto first = static_cast<size_t>(second * kRate);
  const size_t length = pitch < kPitch ? 400 : 256;
  const auto level = [&](const Doubles& sound) {
    return AmplitudeAt({&sound[first], length}, harmonic * pitch, kRate);
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

// From the lowest pitch that is looked for to the highest.
TEST(FormantMover, TakesNoHarmonicForAFormant) {
  for (const double pitch : {80.0, 125.0, 500.0, 1000.0}) {
    const Doubles in = Voice(0.02, 0.02, 0.6, pitch);
    const Doubles out = Moved(in, 1.5);
    for (int h = 2; h * pitch < 6500; ++h) {
      EXPECT_NEAR(Gain(in, out, h, 0.5, pitch), 0, 0.5) << h << " x " << pitch;
    }
  }
}

// The envelope of the lowest voice is drawn by its harmonics, too, and not as coarsely as that of a
// hiss.
TEST(FormantMover, KeepsTheFormantsOfALowVoiceNarrow) {
  const Doubles in = Voice(0.04, 0.01, 0.6, 80, 50);
  const Doubles out = Moved(in, 1.5);
  // The formant has moved to 1500 Hz; 1840 Hz lies beside it.
  EXPECT_GT(Gain(in, out, 19, 0.5, 80), 11);
  EXPECT_LT(Gain(in, out, 23, 0.5, 80), 2);
}

// Breath has no formants: it stays what it is and does not gurgle.
TEST(FormantMover, LeavesAHissSmooth) {
  const Doubles in = WhiteNoise(32000, 0.25, 1);
  const Doubles out = Moved(in, 1.26);
  Doubles difference;
  for (size_t i = 0; i < in.size(); ++i) difference.push_back(out[i] - in[i]);
  const auto level = [](const Doubles& sound) { return Rms(OctaveBand(sound, 2000, kRate)); };
  EXPECT_LT(Decibels(level(difference) / level(in)), -14.5);
}

}  // namespace
