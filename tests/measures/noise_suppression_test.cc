#include "audio_measures/noise_suppression.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 8000;
constexpr size_t kLength = 12 * kRate;

// Somebody talks every other second, 20 dB above the noise.
std::vector<float> Speech() { return Bursts(Noise(kLength, 0.1, 1), kRate, kRate); }
std::vector<float> Hiss() { return Noise(kLength, 0.01, 2); }

std::vector<float> Mixed(double speech, double noise) {
  return Sum(Later(Speech(), 0, speech), Later(Hiss(), 0, noise));
}

Suppression Measured(const std::vector<float>& output) {
  return MeasureSuppression(Speech(), Mixed(1, 1), output, kRate, 1);
}

TEST(Suppression, OfNothingIsNothing) {
  const Suppression figures = Measured(Mixed(1, 1));
  EXPECT_NEAR(*figures.noiseReduction.value, 0, 1e-4);
  EXPECT_NEAR(*figures.speechRetained.value, 0, 1e-4);
  EXPECT_NEAR(*figures.deltaSnr.value, 0, 1e-4);
  EXPECT_NEAR(*figures.musical.value, 0, 1e-3);
}

TEST(Suppression, IsTheGainOfTheNoiseAndThatOfTheSpeech) {
  const Suppression figures = Measured(Mixed(0.5, 0.1));
  EXPECT_NEAR(*figures.noiseReduction.value, 20, 1e-3);
  EXPECT_NEAR(*figures.speechRetained.value, -6.02, 0.02);
  EXPECT_NEAR(*figures.deltaSnr.value, 13.98, 0.05);
  EXPECT_NEAR(*figures.musical.value, 0, 1e-3);
}

TEST(Suppression, OfWhatGetsWorseIsBelowZero) {
  const Suppression figures = Measured(Mixed(-0.5, 2));
  EXPECT_NEAR(*figures.noiseReduction.value, -6.02, 0.01);
  EXPECT_NEAR(*figures.speechRetained.value, -6.02, 0.05);
  EXPECT_NEAR(*figures.deltaSnr.value, -12.04, 0.1);
}

TEST(Suppression, IsTakenAtTheSameTime) {
  const std::vector<float> later = Later(Mixed(0.5, 0.1), 333, 1);
  const Suppression of = MeasureSuppression(Speech(), Later(Mixed(1, 1), 250, 1), later, kRate, 1);
  EXPECT_NEAR(*of.noiseReduction.value, 20, 0.01);
  EXPECT_NEAR(*of.speechRetained.value, -6.02, 0.02);
  EXPECT_NEAR(*of.deltaSnr.value, 13.98, 0.05);
  const Suppression earlier =
      MeasureSuppression(Later(Speech(), 400, 1), Later(Mixed(1, 1), 250, 1), later, kRate, 1);
  EXPECT_NEAR(*earlier.noiseReduction.value, 20, 0.01);
  EXPECT_NEAR(*earlier.speechRetained.value, -6.02, 0.02);
}

// What one of them does not have yet, or no more, is taken for neither silence nor a pause.
TEST(Suppression, IsOfWhatAllHave) {
  const auto expect = [](const std::vector<float>& reference, const std::vector<float>& output) {
    const Suppression of = MeasureSuppression(reference, Mixed(1, 1), output, kRate, 1);
    EXPECT_NEAR(*of.noiseReduction.value, 20, 0.01);
    EXPECT_NEAR(*of.speechRetained.value, -6.02, 0.02);
  };
  std::vector<float> output = Mixed(0.5, 0.1);
  expect(Speech(), Later(output, kRate / 2, 1));
  expect(Speech(), {output.begin() + kRate / 2, output.end()});
  output.resize(kLength - 2 * kRate);
  expect(Speech(), output);
  output = Mixed(0.5, 0.1);
  std::vector<float> reference = Speech();
  expect({reference.begin() + kRate / 2, reference.end()}, output);
  reference.resize(kLength - 3 * kRate / 2);
  expect(reference, output);
}

// Along the input, noise and all: (100 * 0.5 + 0.1) / 101.
TEST(Suppression, WithoutAReferenceIsToldFromTheInput) {
  const Suppression figures = MeasureSuppression({}, Mixed(1, 1), Mixed(0.5, 0.1), kRate, 1);
  EXPECT_NEAR(*figures.noiseReduction.value, 20, 1e-3);
  EXPECT_NEAR(*figures.speechRetained.value, 20 * std::log10(50.1 / 101), 0.02);
  EXPECT_STREQ(figures.deltaSnr.reason, "no reference");
  EXPECT_NEAR(*figures.musical.value, 0, 1e-3);
}

TEST(Suppression, OfAllTheNoiseIs120Decibels) {
  const Suppression figures = Measured(Speech());
  EXPECT_DOUBLE_EQ(*figures.noiseReduction.value, 120);
  EXPECT_NEAR(*figures.deltaSnr.value, 100, 0.1);
  EXPECT_STREQ(figures.musical.reason, kSilence);
}

TEST(Suppression, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> always = Noise(kLength, 0.1, 1);
  const std::vector<float> noisy = Sum(always, Hiss());
  const Suppression figures = MeasureSuppression(always, noisy, noisy, kRate, 1);
  EXPECT_STREQ(figures.noiseReduction.reason, "too little pause");
  EXPECT_STREQ(figures.deltaSnr.reason, "too little pause");
  EXPECT_STREQ(figures.musical.reason, "too little pause");
  EXPECT_NEAR(*figures.speechRetained.value, 0, 1e-4);
  const Suppression hiss = MeasureSuppression({}, Hiss(), Hiss(), kRate, 1);
  EXPECT_STREQ(hiss.speechRetained.reason, "too little speech");
  EXPECT_NEAR(*hiss.noiseReduction.value, 0, 1e-4);
  const Suppression clean = MeasureSuppression(Speech(), Speech(), Speech(), kRate, 1);
  EXPECT_STREQ(clean.noiseReduction.reason, kSilence);
  EXPECT_STREQ(clean.deltaSnr.reason, kSilence);
  EXPECT_STREQ(Measured(always).noiseReduction.reason, "");
  EXPECT_STREQ(Measured(Noise(kLength, 0.1, 5)).noiseReduction.reason, "no clear delay");
  EXPECT_STREQ(Measured(std::vector<float>(kLength)).speechRetained.reason, kSilence);
}

// 100 samples from any speech on, more than an interpolation reaches, there is the noise.
TEST(Suppression, OfAllTheSpeechHasNoFigureOfIt) {
  const std::vector<float> speech = Speech();
  std::vector<float> pauses = Hiss();
  for (size_t i = 0; i < kLength; ++i) {
    for (const size_t near : {i, i + 100, i - std::min<size_t>(i, 100)}) {
      if (speech[std::min(near, kLength - 1)] != 0) pauses[i] = 0;
    }
  }
  const Suppression figures = Measured(pauses);
  EXPECT_STREQ(figures.speechRetained.reason, kSilence);
  EXPECT_TRUE(figures.noiseReduction.value);
}

TEST(Suppression, IsComputedForEachChannelWithOrWithoutTheReference) {
  const std::vector<float> speech = Speech();
  const std::vector<float> input = Mixed(1, 1);
  const std::vector<float> less = Mixed(1, 0.1);
  const std::vector<std::string_view> names = {"noise_reduction", "speech_retained", "delta_snr",
                                               "musical"};
  Inputs inputs = {
      .output = {kRate, {input, less}}, .reference = {kRate, {speech}}, .input = {kRate, {input}}};
  const std::vector<NamedFigure> figures = Compute(inputs, names);
  ASSERT_EQ(figures.size(), 12U);
  EXPECT_NEAR(*figures[1].figure.value, 20, 1e-3);
  EXPECT_NEAR(*figures[2].figure.value, 10, 1e-3);
  EXPECT_NEAR(*figures[4].figure.value, 0, 0.02);
  EXPECT_NEAR(*figures[7].figure.value, 20, 0.05);
  EXPECT_NEAR(*figures[10].figure.value, 0, 1e-3);
  inputs.reference = {};
  const std::vector<NamedFigure> without = Compute(inputs, names);
  ASSERT_EQ(without.size(), 10U);
  EXPECT_NEAR(*without[1].figure.value, 20, 1e-3);
  EXPECT_STREQ(without[6].figure.reason, "no reference");
}

}  // namespace
}  // namespace audio_measures
