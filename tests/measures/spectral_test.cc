// The measures of spectra against a reference.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "audio_measures/band_difference.h"
#include "audio_measures/cepstral_distance.h"
#include "audio_measures/intelligibility.h"
#include "audio_measures/short_spectra.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 16000;

std::vector<float> Scaled(std::vector<float> samples, float factor) {
  for (float& sample : samples) sample *= factor;
  return samples;
}

// 1 + 0.5 / z, whose gain is 1.5 at the lowest frequencies and 0.5 at the highest.
std::vector<float> Filtered(const std::vector<float>& samples) {
  std::vector<float> filtered = samples;
  for (size_t i = 1; i < samples.size(); ++i) filtered[i] += 0.5F * samples[i - 1];
  return filtered;
}

std::vector<float> TheNoise() { return Noise(size_t{5} * kRate, 0.1, 1); }

TEST(SpectralMeasures, OfWhatIsTheSameAreTheBest) {
  const std::vector<float> noise = TheNoise();
  const SpectralDifference spectra = CompareSpectra(noise, noise, kRate);
  EXPECT_EQ(spectra.fwSegSnr.value, 35);
  EXPECT_EQ(spectra.lsd.value, 0);
  EXPECT_EQ(CepstralDistance(noise, noise, kRate).value, 0);
  EXPECT_EQ(CompareBands(noise, noise, kRate).mean.value, 0);
  EXPECT_EQ(CompareBands(noise, noise, kRate).worst.value, 0);
}

// All levels are 6.02 dB lower, and X - Y is half of X; predictors know no gain.
TEST(SpectralMeasures, OfHalfTheAmplitude) {
  const std::vector<float> noise = TheNoise();
  const std::vector<float> half = Scaled(noise, 0.5F);
  const double six = 20 * std::log10(2);
  const SpectralDifference spectra = CompareSpectra(noise, half, kRate);
  EXPECT_NEAR(*spectra.fwSegSnr.value, six, 1e-4);
  EXPECT_NEAR(*spectra.lsd.value, six, 1e-3);
  EXPECT_NEAR(*CepstralDistance(noise, half, kRate).value, 0, 1e-6);
  EXPECT_NEAR(*CompareBands(noise, half, kRate).mean.value, six, 1e-5);
  EXPECT_NEAR(*CompareBands(noise, half, kRate).worst.value, six, 1e-5);
}

// The gain of the filter in dB, at the frequency in Hz.
double FilterGain(double hertz) {
  const double cosine = std::cos(2 * M_PI * hertz / kRate);
  return 10 * std::log10(1.25 + cosine);
}

TEST(CompareBands, SeesTheGainOfAFilterInItsBands) {
  const std::vector<float> noise = Noise(size_t{60} * kRate, 0.1, 1);
  const BandDifference bands = CompareBands(noise, Filtered(noise), kRate);
  double sum = 0;
  double worst = 0;
  int count = 0;
  for (int band = -13; 1000 * std::pow(10, band / 10.0 + 0.05) <= kRate / 2.0; ++band) {
    const double gain = std::fabs(FilterGain(1000 * std::pow(10, band / 10.0)));
    sum += gain;
    worst = std::max(worst, gain);
    ++count;
  }
  EXPECT_EQ(count, 22);
  EXPECT_NEAR(*bands.mean.value, sum / count, 0.05);
  EXPECT_NEAR(*bands.worst.value, worst, 0.2);
}

// What is added lies in the band around 1 kHz, near either of its edges, or in a neighbour.
TEST(CompareBands, BandsEndAtTheirEdges) {
  const std::vector<float> noise = Noise(size_t{20} * kRate, 0.01, 1);
  const auto With = [&](double hertz) {
    std::vector<float> both = noise;
    for (size_t i = 0; i < both.size(); ++i) {
      const double angle = 2 * M_PI * hertz * static_cast<double>(i) / kRate;
      both[i] += static_cast<float>(0.1 * std::sin(angle));
    }
    return both;
  };
  const auto Worst = [&](double a, double b) {
    return *CompareBands(With(a), With(b), kRate).worst.value;
  };
  EXPECT_LT(Worst(900, 1000), 6);
  EXPECT_LT(Worst(1113, 1000), 6);
  EXPECT_GT(Worst(882, 1000), 20);
  EXPECT_GT(Worst(1132, 1000), 20);
}

// A tone of 500 Hz; what the signal has at 5 kHz, 80 dB down, is in a band that does not count.
TEST(CompareBands, LeavesOutWhatTheReferenceDoesNotHave) {
  std::vector<float> slow(size_t{5} * kRate);
  for (size_t i = 0; i < slow.size(); ++i) {
    slow[i] = static_cast<float>(0.1 * std::sin(2 * M_PI * 500 * static_cast<double>(i) / kRate));
  }
  std::vector<float> both = slow;
  for (size_t i = 0; i < both.size(); ++i) {
    both[i] +=
        static_cast<float>(1e-5 * std::sin(2 * M_PI * 5000 * static_cast<double>(i) / kRate));
  }
  EXPECT_LT(*CompareBands(slow, both, kRate).worst.value, 0.01);
}

// Minimum phase: the cepstrum of the filter is (-1)^(n + 1) 0.5^n / n. White noise has none of its
// own, but for what a block of 30 ms does not tell.
TEST(CepstralDistance, IsThatOfTheFilter) {
  constexpr int kHighRate = 192000;  // Long blocks.
  const std::vector<float> noise = Noise(size_t{4} * kHighRate, 0.1, 1);
  double squares = 0;
  for (int n = 1; n <= 16; ++n) squares += std::pow(std::pow(0.5, n) / n, 2);
  const double expected = 10 / std::log(10) * std::sqrt(2 * squares);
  EXPECT_NEAR(*CepstralDistance(noise, Filtered(noise), kHighRate).value, expected, 0.05);
}

TEST(Intelligibility, FallsFromOneWithTheNoise) {
  const int rate = kIntelligibilityRate;
  std::vector<float> speech = Noise(size_t{5} * rate, 0.1, 1);
  for (size_t i = 0; i < speech.size(); ++i) {  // Syllables.
    const double angle = 2 * M_PI * 4 * static_cast<double>(i) / rate;
    speech[i] *= static_cast<float>(1.01 + std::sin(angle));
  }
  const Intelligibility same = IntelligibilityOf(speech, speech);
  EXPECT_NEAR(*same.stoi.value, 1, 1e-9);
  EXPECT_NEAR(*same.estoi.value, 1, 1e-9);
  const Intelligibility louder = IntelligibilityOf(speech, Scaled(speech, 3));
  EXPECT_NEAR(*louder.stoi.value, 1, 1e-6);
  EXPECT_NEAR(*louder.estoi.value, 1, 1e-6);
  double last = 1;
  for (const double rms : {0.03, 0.1, 0.3, 1.0}) {
    std::vector<float> noisy = Noise(speech.size(), rms, 2);
    for (size_t i = 0; i < noisy.size(); ++i) noisy[i] += speech[i];
    const Intelligibility intelligibility = IntelligibilityOf(speech, noisy);
    EXPECT_LT(*intelligibility.stoi.value, last);
    EXPECT_LT(*intelligibility.estoi.value, *intelligibility.stoi.value);
    last = *intelligibility.stoi.value;
  }
  EXPECT_LT(*IntelligibilityOf(speech, Noise(speech.size(), 0.1, 3)).stoi.value, 0.4);
}

std::string Reason(const Figure& figure) { return figure.value ? "a value" : figure.reason; }

// 30 blocks take 29 * 128 + 256 samples.
TEST(Intelligibility, TakesThirtyBlocksThatAreNotSilent) {
  std::vector<float> noise = Noise(29 * 128 + 256, 0.1, 1);
  EXPECT_EQ(Reason(IntelligibilityOf(noise, noise).stoi), "a value");
  const std::span<const float> shorter = std::span(noise).first(noise.size() - 1);
  EXPECT_EQ(Reason(IntelligibilityOf(shorter, shorter).stoi), kTooShort);
  for (size_t i = 0; i < 256; ++i) noise[i] *= 0.001F;
  EXPECT_EQ(Reason(IntelligibilityOf(noise, noise).estoi), kTooShort);
}

TEST(Intelligibility, RateIsChangedWithoutDelay) {
  std::vector<float> sine(48000);
  for (size_t i = 0; i < sine.size(); ++i) {
    sine[i] = static_cast<float>(0.5 * std::sin(2 * M_PI * 1000 * static_cast<double>(i) / 48000));
  }
  const std::vector<float> resampled = AtIntelligibilityRate(sine, 48000);
  ASSERT_NEAR(static_cast<double>(resampled.size()), 10000, 1);
  for (size_t i = 1000; i < 9000; ++i) {
    const double angle = 2 * M_PI * 1000 * static_cast<double>(i) / kIntelligibilityRate;
    ASSERT_NEAR(resampled[i], 0.5 * std::sin(angle), 1e-5);
  }
}

TEST(SpectralMeasures, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> noise = TheNoise();
  const std::vector<float> silence(noise.size());
  const std::span<const float> block = std::span(noise).first(480);
  const std::span<const float> little = block.first(479);
  const std::span<const float> window = std::span(noise).first(4096);
  EXPECT_EQ(Reason(CompareSpectra(little, little, kRate).lsd), kTooShort);
  EXPECT_EQ(Reason(CompareSpectra(little, little, kRate).fwSegSnr), kTooShort);
  EXPECT_EQ(Reason(CompareSpectra(block, block, kRate).lsd), "a value");
  EXPECT_EQ(Reason(CompareSpectra(silence, noise, kRate).fwSegSnr), kSilence);
  EXPECT_EQ(Reason(CompareSpectra(noise, silence, kRate).lsd), "a value");
  EXPECT_EQ(Reason(CepstralDistance(little, little, kRate)), kTooShort);
  EXPECT_EQ(Reason(CepstralDistance(block, block, kRate)), "a value");
  EXPECT_EQ(Reason(CepstralDistance(silence, noise, kRate)), kSilence);
  EXPECT_EQ(Reason(CepstralDistance(noise, silence, kRate)), kSilence);
  EXPECT_EQ(Reason(CompareBands(window.first(4095), window.first(4095), kRate).mean), kTooShort);
  EXPECT_EQ(Reason(CompareBands(window, window, kRate).mean), "a value");
  EXPECT_EQ(Reason(CompareBands(silence, noise, kRate).worst), kSilence);
  EXPECT_EQ(Reason(IntelligibilityOf(noise, silence).stoi), kSilence);
  EXPECT_EQ(Reason(IntelligibilityOf(silence, noise).estoi), kSilence);
}

}  // namespace
}  // namespace audio_measures
