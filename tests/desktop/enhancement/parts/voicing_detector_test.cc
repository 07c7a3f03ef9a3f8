#include "desktop/enhancement/parts/voicing_detector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <span>
#include <vector>

#include "support/signals.h"

namespace {

constexpr int kRate = 4000;
constexpr size_t kHop = 40;

using Doubles = std::vector<double>;

Doubles Sine(double hertz, double level, size_t count) {
  Doubles samples(count);
  for (size_t i = 0; i < count; ++i) {
    samples[i] = level * M_SQRT2 * std::sin(2 * M_PI * hertz * static_cast<double>(i) / kRate);
  }
  return samples;
}

// The share of the blocks that are voiced.
double VoicedShare(const Doubles& sound, const Doubles& noise) {
  std::vector<float> samples(sound.size());
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(sound[i] + noise[i]);
  desktop::VoicingDetector detector(kRate, kHop);
  size_t voiced = 0;
  for (size_t at = 0; at + kHop <= samples.size(); at += kHop) {
    voiced += detector.Process(std::span(samples).subspan(at, kHop)) ? 1 : 0;
  }
  return static_cast<double>(voiced * kHop) / static_cast<double>(samples.size());
}

Doubles NoiseOf(double level) {
  Doubles noise = WhiteNoise(20 * kRate, 1, 5);
  const double scale = level / Rms(noise);
  for (double& sample : noise) sample *= scale;
  return noise;
}

// A tone of 15 Hz hardly changes within the lag of a pitch, and is 1.5 dB above the noise.
TEST(VoicingDetector, TakesNoRumbleForAVoice) {
  EXPECT_LT(VoicedShare(Sine(15, 1200, 20 * kRate), NoiseOf(1000)), 0.2);
}

TEST(VoicingDetector, HearsALowVoiceInNoise) {
  EXPECT_GT(VoicedShare(Sine(120, 4000, 20 * kRate), NoiseOf(1000)), 0.8);
}

}  // namespace
