#include "desktop/enhancement/parts/steady_noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <span>
#include <vector>

#include "support/signals.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kHop = 160;
constexpr size_t kBlocks = 300;

// White noise of which every second block is louder by so many dB.
std::vector<float> Wavering(double decibels) {
  const std::vector<double> noise = WhiteNoise(static_cast<int>(kBlocks * kHop), 0.1, 3);
  std::vector<float> samples(noise.size());
  for (size_t i = 0; i < samples.size(); ++i) {
    const double gain = i / kHop % 2 == 0 ? 1 : std::pow(10.0, decibels / 20);
    samples[i] = static_cast<float>(10000 * gain * noise[i]);
  }
  return samples;
}

// White noise that falls once, after two seconds, by so many dB.
std::vector<float> Falling(double decibels) {
  std::vector<float> samples = Wavering(0);
  for (size_t i = 200 * kHop; i < samples.size(); ++i) {
    samples[i] *= static_cast<float>(std::pow(10.0, -decibels / 20));
  }
  return samples;
}

struct Heard {
  size_t steady = 0;
  size_t rattling = 0;
};

// In how many blocks.
Heard Hear(const std::vector<float>& samples) {
  desktop::SteadyNoise noise(kRate, kHop);
  Heard heard;
  for (size_t at = 0; at < samples.size(); at += kHop) {
    heard.steady += noise.Process(std::span(samples).subspan(at, kHop)) ? 1 : 0;
    heard.rattling += noise.Rattles() ? 1 : 0;
  }
  return heard;
}

// Levels that differ by d dB from block to block deviate by d / 2 and, as white noise does, by
// about 0.5 dB: together by less than the limit of 1.5 dB, and by more.
TEST(SteadyNoise, IsWhatKeepsItsLevel) {
  EXPECT_GT(Hear(Wavering(0)).steady, kBlocks - 40);
  EXPECT_GT(Hear(Wavering(2.4)).steady, kBlocks - 40);
  EXPECT_LT(Hear(Wavering(3.4)).steady, 5);
}

// For as long as the fall is among the last 300 ms.
TEST(SteadyNoise, RattlesForAsLongAsTheFallIsRemembered) {
  EXPECT_EQ(Hear(Falling(9)).rattling, 0);
  EXPECT_NEAR(static_cast<double>(Hear(Falling(16)).rattling), 29, 2);
}

}  // namespace
