#include "audio_measures/echo_loss.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 8000;
constexpr size_t kBlock = 160;
constexpr size_t kLength = 10 * kRate;
constexpr size_t kEcho = 1000;  // Samples by which the echo is later.

// Somebody talks for 300 ms of every 800.
std::vector<float> Far() { return Bursts(Noise(kLength, 0.1, 1), 15 * kBlock, 25 * kBlock); }

EchoLoss Measured(const std::vector<float>& microphone, const std::vector<float>& output,
                  const std::vector<float>& near = {}) {
  return MeasureEchoLoss(Far(), microphone, near, output, kRate, 1);
}

TEST(EchoLoss, IsTheLevelBeforeOverThatAfter) {
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  EXPECT_NEAR(*Measured(echo, Later(echo, 0, 0.1)).erle.value, 20, 1e-4);
  EXPECT_NEAR(*Measured(echo, Later(echo, 0, 2)).erle.value, -6.0206, 1e-4);
  EXPECT_NEAR(*Measured(echo, echo).erle.value, 0, 1e-9);
  EXPECT_DOUBLE_EQ(*Measured(echo, std::vector<float>(kLength)).erle.value, 120);
}

// What sounds while the far end is silent would count if the delay were not found, or not used.
TEST(EchoLoss, IsOfTheTimeAtWhichTheEchoIsHeard) {
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  std::vector<float> other = Noise(kLength, 0.2, 2);
  for (size_t i = 0; i < kLength; ++i) {
    if (echo[i] != 0.0F) other[i] = 0;
  }
  const EchoLoss loss = Measured(Sum(echo, other), Sum(Later(echo, 0, 0.05), other));
  EXPECT_NEAR(*loss.erle.value, 26.02, 0.02);
}

TEST(EchoLoss, TakesTheDelayOfTheOutputOut) {
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  EXPECT_NEAR(*Measured(echo, Later(echo, 700, 0.1)).erle.value, 20, 0.01);
}

// In the second half of the time somebody talks at the microphone too, and is left as he is.
TEST(EchoLoss, LeavesOutTheTimeInWhichTheNearEndTalks) {
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  std::vector<float> near = Noise(kLength, 0.1, 3);
  std::fill_n(near.begin(), kLength * 2 / 5, 0.0F);
  const std::vector<float> output = Sum(Later(echo, 0, 0.01), near);
  EXPECT_NEAR(*Measured(Sum(echo, near), output, near).erle.value, 40, 1e-3);
  EXPECT_LT(*Measured(Sum(echo, near), output).erle.value, 10);
  // Somebody who never talks is as good as nobody.
  EXPECT_NEAR(*Measured(echo, Later(echo, 0, 0.01), std::vector<float>(kLength)).erle.value, 40,
              1e-3);
}

// Four bursts of 300 ms go by before the canceller has learnt: 1.2 s of talk.
TEST(Convergence, IsTheTimeOfTalkBefore20Decibels) {
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  for (const double gain : {0.0999, 0.101}) {
    std::vector<float> output = echo;
    for (size_t i = kEcho + 4 * 40 * kBlock; i < kLength; ++i) {
      output[i] *= static_cast<float>(gain);
    }
    const EchoLoss loss = Measured(echo, output);
    if (gain < 0.1) {
      EXPECT_NEAR(*loss.convergence.value, 1.2, 1e-9);
    } else {
      EXPECT_STREQ(loss.convergence.reason, "the echo is never 20 dB down");
    }
  }
  EXPECT_DOUBLE_EQ(*Measured(echo, Later(echo, 0, 0.01)).convergence.value, 0);
}

TEST(EchoLoss, IsTrackedWhileTheFarEndTalks) {
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  std::vector<float> output = Later(echo, 0, 0.1);
  std::fill_n(output.begin(), kLength / 2, 0.0F);
  const std::vector<EchoLoss::At> track = Measured(echo, output).track;
  // 12 bursts of 15 blocks and 13 of one that is cut short, in windows of 10.
  ASSERT_EQ(track.size(), 12U * 15 + 13 - 10 + 1);
  EXPECT_NEAR(track.front().seconds, static_cast<double>(kEcho) / kRate, 1e-9);
  EXPECT_NEAR(track[1].seconds, static_cast<double>(kEcho) / kRate + 0.02, 1e-9);
  EXPECT_DOUBLE_EQ(track.front().erle, 120);
  EXPECT_NEAR(track.back().erle, 20, 1e-4);
  // 93 of the blocks end in the first half: of these windows all ten blocks are silent.
  EXPECT_EQ(std::ranges::count(track, 120.0, &EchoLoss::At::erle), 93 - 9);
}

TEST(EchoLoss, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> silence(kLength);
  const std::vector<float> echo = Later(Far(), kEcho, 0.5);
  EXPECT_STREQ(MeasureEchoLoss(silence, echo, {}, echo, kRate, 1).erle.reason, kSilence);
  EXPECT_STREQ(Measured(silence, silence).erle.reason, kSilence);
  EXPECT_STREQ(Measured(silence, silence).convergence.reason, kSilence);
  const std::vector<float> near = Noise(kLength, 0.1, 4);
  EXPECT_STREQ(Measured(echo, echo, near).erle.reason, "too little of the far end alone");
}

TEST(EchoLoss, IsComputedForEachChannelWithOrWithoutTheNearEnd) {
  const std::vector<float> far = Far();
  const std::vector<float> echo = Later(far, kEcho, 0.5);
  const std::vector<float> half = Later(echo, 0, 0.1);
  const std::vector<float> less = Later(echo, 0, 0.01);
  const std::vector<float> near(kLength);
  Inputs inputs = {
      .output = {kRate, {half, less}}, .far = {kRate, {far}}, .input = {kRate, {echo}}};
  const std::vector<std::string_view> names = {"erle", "convergence"};
  for (int i = 0; i < 2; ++i) {
    const std::vector<NamedFigure> figures = Compute(inputs, names);
    ASSERT_EQ(figures.size(), 6U);
    EXPECT_NEAR(*figures[0].figure.value, 20, 1e-4);
    EXPECT_NEAR(*figures[1].figure.value, 40, 1e-4);
    EXPECT_NEAR(*figures[2].figure.value, 30, 1e-4);
    EXPECT_FALSE(figures[2].channel);
    EXPECT_DOUBLE_EQ(*figures[4].figure.value, 0);
    inputs.near = {kRate, {near}};
  }
  inputs.near.rate = 2 * kRate;
  EXPECT_STREQ(Compute(inputs, names)[0].figure.reason, kOtherRate);
}

}  // namespace
}  // namespace audio_measures
