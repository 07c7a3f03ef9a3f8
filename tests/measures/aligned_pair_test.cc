#include "audio_measures/aligned_pair.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "audio_measures/difference.h"
#include "audio_measures/interpolation.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 48000;

double Sdr(const AlignedPair& pair) {
  return Snr(pair.reference, pair.signal).value.value_or(-999);
}

// The middle of what Interpolate makes, away from the ends of the signal.
std::vector<float> Warped(const std::vector<float>& samples, double later, double ppm) {
  return Interpolate(samples, -later / (1 + ppm * 1e-6), 1 / (1 + ppm * 1e-6), samples.size());
}

void Add(std::vector<float>& samples, const std::vector<float>& noise) {
  for (size_t i = 0; i < samples.size(); ++i) samples[i] += noise[i];
}

// Noise of an RMS of 0.1 that fades towards half the rate, where nothing can be interpolated.
std::vector<float> FadingNoise(size_t samples) {
  const std::vector<float> noise = Noise(samples + 2, 0.1 * 4 / std::sqrt(6.0), 1);
  std::vector<float> fading(samples);
  for (size_t i = 0; i < samples; ++i) {
    fading[i] = (noise[i] + 2 * noise[i + 1] + noise[i + 2]) / 4;
  }
  return fading;
}

// Sums of cosines are known between their samples; Warped would be the code's own word for it.
TEST(AlignPair, TakesOutAFractionOfASample) {
  const std::vector<float> reference = Between(size_t{4} * kRate, 0.1, 1, 0);
  for (const double later : {0.5, -0.25, 37.3, -1200.75}) {
    std::vector<float> signal = Between(size_t{4} * kRate, 0.1, 1, later);
    for (float& sample : signal) sample *= -0.25F;
    const AlignedPair pair = AlignPair(reference, signal, kRate, 1);
    EXPECT_NEAR(pair.delay.value.value_or(0) * kRate, later, 0.001);
    EXPECT_NEAR(pair.gain.value.value_or(0), 20 * std::log10(0.25), 0.001);
    EXPECT_EQ(pair.polarity.value, -1);
    EXPECT_GT(Sdr(pair), 80) << later;
  }
}

// 20 dB of SNR leave the delay within a tenth of a sample.
TEST(AlignPair, FindsTheDelayInNoise) {
  const std::vector<float> reference = FadingNoise(size_t{4} * kRate);
  std::vector<float> signal = Warped(reference, 100.4, 0);
  Add(signal, Noise(signal.size(), 0.01, 2));
  const AlignedPair pair = AlignPair(reference, signal, kRate, 1);
  EXPECT_NEAR(pair.delay.value.value_or(0) * kRate, 100.4, 0.1);
  EXPECT_NEAR(Sdr(pair), 20, 0.2);
}

TEST(AlignPair, LeavesWhatIsTheSameAsItIs) {
  const std::vector<float> reference = Noise(size_t{4} * kRate, 0.1, 1);
  for (const size_t later : {size_t{0}, size_t{1}, size_t{480}}) {
    std::vector<float> signal(later);
    signal.insert(signal.end(), reference.begin(), reference.end());
    const AlignedPair pair = AlignPair(reference, signal, kRate, 1);
    EXPECT_EQ(pair.delay.value, static_cast<double>(later) / kRate);
    EXPECT_EQ(pair.gain.value, 0);
    EXPECT_EQ(pair.reference, reference);
    EXPECT_EQ(pair.signal, reference);
  }
}

// A tone lies as well a period later; where it lies already comes first.
TEST(AlignPair, LeavesAToneWhereItIs) {
  std::vector<float> tone(size_t{6} * kRate);
  for (size_t i = 0; i < tone.size(); ++i) {
    tone[i] = static_cast<float>(0.3 * std::sin(2 * M_PI * static_cast<double>(i % 48) / 48));
  }
  const AlignedPair pair = AlignPair(tone, tone, kRate, 1);
  EXPECT_EQ(pair.delay.value, 0);
  EXPECT_EQ(pair.delayTrack.value, 0);
  EXPECT_EQ(pair.signal, tone);
}

// 2 ppm over 30 s at 20 dB of SNR; what smears the delay of the whole as well.
TEST(AlignPair, FindsAndTakesOutDrift) {
  constexpr int kLowRate = 8000;
  const std::vector<float> reference = FadingNoise(size_t{30} * kLowRate);
  const std::vector<float> noise = Noise(reference.size(), 0.01, 2);
  for (const double ppm : {50.0, -20.0, 1000.0}) {
    std::vector<float> signal = Warped(reference, 10.3, ppm);
    Add(signal, noise);
    const AlignedPair pair = AlignPair(reference, signal, kLowRate, 1);
    EXPECT_NEAR(pair.drift.value.value_or(0), ppm, 0.1);
    EXPECT_NEAR(pair.delayTrack.value.value_or(0), std::fabs(ppm) * 28e-6, 2e-6);
    EXPECT_NEAR(Sdr(pair), 20, 0.5) << ppm;
  }
}

// Without noise what is left of the drift is seen: 0.1 ppm over 10 s would leave 35 dB at half the
// rate.
TEST(AlignPair, FollowsADriftCloserAndCloser) {
  const std::vector<float> reference = FadingNoise(size_t{10} * kRate);
  for (const double ppm : {300.0, -1000.0}) {
    const AlignedPair pair = AlignPair(reference, Warped(reference, 3.2, ppm), kRate, 1);
    EXPECT_NEAR(pair.drift.value.value_or(0), ppm, 0.003);
    EXPECT_GT(Sdr(pair), 50) << ppm;
  }
}

TEST(AlignPair, TellsADelayThatJumpsFromNone) {
  constexpr std::ptrdiff_t kJump = std::ptrdiff_t{4} * kRate;
  const std::vector<float> reference = Noise(size_t{8} * kRate, 0.1, 1);
  std::vector<float> signal = reference;
  signal.erase(signal.begin() + kJump, signal.begin() + kJump + 480);
  EXPECT_NEAR(AlignPair(reference, signal, kRate, 1).delayTrack.value.value_or(0), 0.01, 1e-5);
  EXPECT_EQ(AlignPair(reference, reference, kRate, 1).delayTrack.value, 0);
}

std::string Fault(const std::vector<float>& reference, const std::vector<float>& signal) {
  const AlignedPair pair = AlignPair(reference, signal, kRate, 1);
  EXPECT_EQ(pair.signal.size(), pair.reference.size());
  EXPECT_EQ(pair.signal.empty(), *pair.fault != '\0');
  EXPECT_EQ(pair.delay.value.has_value(), *pair.fault == '\0');
  return pair.fault;
}

TEST(AlignPair, WhatCannotBeAlignedSaysWhy) {
  const std::vector<float> noise = Noise(kRate, 0.1, 1);
  EXPECT_EQ(Fault(noise, std::vector<float>(kRate)), kSilence);
  EXPECT_EQ(Fault(std::vector<float>(kRate), noise), kSilence);
  EXPECT_EQ(Fault(noise, {}), kSilence);
  EXPECT_EQ(Fault(noise, Noise(kRate, 0.1, 2)), "no clear delay");
  EXPECT_EQ(Fault({0.5F}, {0.5F}), kTooShort);
  EXPECT_EQ(Fault(noise, noise), "");
}

}  // namespace
}  // namespace audio_measures
