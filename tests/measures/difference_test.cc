#include "audio_measures/difference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 16000;

// The reference with noise of its own power less `snr`.
std::vector<float> Noisy(const std::vector<float>& reference, double snr) {
  std::vector<float> noisy = Noise(reference.size(), 0.1 * std::pow(10, -snr / 20), 2);
  for (size_t i = 0; i < noisy.size(); ++i) noisy[i] += reference[i];
  return noisy;
}

TEST(Snr, IsThatOfTheNoise) {
  const std::vector<float> reference = Noise(size_t{20} * kRate, 0.1, 1);
  for (const double snr : {-10.0, 0.0, 20.0, 40.0}) {
    EXPECT_NEAR(*Snr(reference, Noisy(reference, snr)).value, snr, 0.05);
    EXPECT_NEAR(*SiSdr(reference, Noisy(reference, snr)).value, snr, 0.2);
  }
  // The blocks vary around it by 10 log10(e) sqrt(4 / 320) dB, and the mean of a log is lower for
  // it, in the numerator and in the denominator.
  EXPECT_NEAR(*SegSnr(reference, Noisy(reference, 20), kRate).value, 20, 0.1);
}

TEST(Snr, OfWhatIsTheSameIsTheHighest) {
  const std::vector<float> reference = Noise(kRate, 0.1, 1);
  EXPECT_EQ(Snr(reference, reference).value, kHighestSnr);
  EXPECT_EQ(SiSdr(reference, reference).value, kHighestSnr);
  EXPECT_EQ(SegSnr(reference, reference, kRate).value, 35);
}

// Orthogonal: what is not of the reference is exactly known.
TEST(SiSdr, KnowsNoScaleAndNoConstant) {
  const std::vector<float> reference = {0.5F, -0.5F, 0.5F, -0.5F, 0.5F, -0.5F, 0.5F, -0.5F};
  const std::vector<float> other = {0.1F, 0.1F, -0.1F, -0.1F, 0.1F, 0.1F, -0.1F, -0.1F};
  std::vector<float> signal(reference.size());
  for (size_t i = 0; i < signal.size(); ++i) signal[i] = -3 * (reference[i] + other[i]) + 0.7F;
  EXPECT_NEAR(*SiSdr(reference, signal).value, 20 * std::log10(5), 1e-5);
}

TEST(Snr, TakesGainForADifference) {
  const std::vector<float> reference = Noise(kRate, 0.1, 1);
  std::vector<float> louder = reference;
  for (float& sample : louder) sample *= 1.1F;
  EXPECT_NEAR(*Snr(reference, louder).value, 20, 1e-4);
  EXPECT_NEAR(*SegSnr(reference, louder, kRate).value, 20, 1e-4);
}

// Blocks at 20 dB, at infinity, at -20 dB, and one of silence that does not count.
TEST(SegSnr, HoldsBlocksWithinItsRange) {
  constexpr size_t kBlock = 320;
  std::vector<float> reference(4 * kBlock, 0.5F);
  std::vector<float> signal = reference;
  for (size_t i = 0; i < kBlock; ++i) {
    signal[i] = 0.55F;
    signal[2 * kBlock + i] = 5.5F;
    reference[3 * kBlock + i] = 0;
  }
  EXPECT_NEAR(*SegSnr(reference, signal, kRate).value, (20.0 + 35 - 10) / 3, 1e-4);
}

std::string Reason(const Figure& figure) { return figure.value ? "a value" : figure.reason; }

TEST(Snr, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> silence(kRate);
  const std::vector<float> noise = Noise(kRate, 0.1, 1);
  EXPECT_EQ(Reason(Snr({}, {})), kSilence);
  EXPECT_EQ(Reason(Snr(silence, noise)), kSilence);
  EXPECT_EQ(Reason(Snr(noise, silence)), "a value");
  EXPECT_EQ(Reason(SiSdr({}, {})), kSilence);
  EXPECT_EQ(Reason(SiSdr(noise, silence)), kSilence);
  EXPECT_EQ(Reason(SegSnr({}, {}, kRate)), kTooShort);
  EXPECT_EQ(Reason(SegSnr(std::span(noise).first(319), std::span(noise).first(319), kRate)),
            kTooShort);
  EXPECT_EQ(Reason(SegSnr(std::span(noise).first(320), std::span(noise).first(320), kRate)),
            "a value");
  EXPECT_EQ(Reason(SegSnr(silence, noise, kRate)), kSilence);
}

}  // namespace
}  // namespace audio_measures
