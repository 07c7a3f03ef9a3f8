#include "engine_api/effects/audio_effect_module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

using Gains = std::array<float, 11>;

constexpr Gains kAllUp = {24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24};

TEST(AudioEffectModuleTest, EqualisesTheSamplesOfItsFrameAndNoMore) {
  AudioEffectModule module;
  Gains gains = kAllUp;
  module.SetEqualizerEnable(true);
  module.SetEqGains(gains.data(), false);
  zuwebrtc::AudioFrame frame;
  frame.sample_rate_hz_ = 22050;
  frame.num_channels_ = 2;
  frame.samples_per_channel_ = 220;
  std::fill_n(frame.data_, 441, short{1000});
  EXPECT_EQ(module.Process(frame), 220u);
  EXPECT_NE(frame.data_[439], 1000);
  EXPECT_EQ(frame.data_[440], 1000);
}

TEST(AudioEffectModuleTest, LeavesABandAsItWasForAGainThatIsNoNumber) {
  std::vector<short> first;
  for (const bool again : {false, true}) {
    AudioEffectModule module;
    Gains gains = kAllUp;
    module.SetEqualizerEnable(true);
    module.SetEqGains(gains.data(), false);
    gains.fill(std::nanf(""));
    if (again) module.SetEqGains(gains.data(), false);
    zuwebrtc::AudioFrame frame;
    frame.sample_rate_hz_ = 48000;
    frame.num_channels_ = 1;
    frame.samples_per_channel_ = 480;
    std::fill_n(frame.data_, 480, short{100});
    module.Process(frame);
    if (!again) first.assign(frame.data_, frame.data_ + 480);
    EXPECT_EQ(std::vector<short>(frame.data_, frame.data_ + 480), first);
  }
  EXPECT_GT(first[0], 200);
}

TEST(AudioEffectModuleTest, ChangesAtOnceOrSmoothly) {
  for (const bool smooth : {false, true}) {
    AudioEffectModule module;
    module.SetEqualizerEnable(true);
    zuwebrtc::AudioFrame frame;
    frame.sample_rate_hz_ = 48000;
    frame.num_channels_ = 1;
    frame.samples_per_channel_ = 480;
    module.Process(frame);
    Gains gains = kAllUp;
    module.SetEqGains(gains.data(), smooth);
    std::fill_n(frame.data_, 480, short{100});
    module.Process(frame);
    EXPECT_EQ(frame.data_[0] > 200, !smooth) << frame.data_[0];
  }
}

}  // namespace
