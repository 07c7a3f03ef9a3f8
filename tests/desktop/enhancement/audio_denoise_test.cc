#include "engine_api/enhancement/audio_denoise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>

#include "desktop/enhancement/signals.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"

namespace {

constexpr int kRates[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000};

size_t BlockOf(int rate, int channels) {
  return static_cast<size_t>(static_cast<double>(rate) * channels * 10 / 1000);
}

// Whole blocks of `samples`, cleaned.
Samples Clean(int rate, int channels, bool light, Samples samples) {
  CAudioDenoise denoise(rate, channels);
  denoise.EnableLightDenoise(light);
  const size_t block = BlockOf(rate, channels);
  size_t at = 0;
  for (; at + block <= samples.size(); at += block) denoise.Process(samples.data() + at);
  samples.resize(at);
  return samples;
}

double Decibels(double ratio) { return 20 * std::log10(ratio); }

// The signal-to-noise ratio of `samples`, which lag `delay` behind the clean ones, in dB.
double Ratio(const Samples& clean, const Samples& samples, size_t delay) {
  double signal = 0;
  double error = 0;
  for (size_t i = delay; i < samples.size(); ++i) {
    const double reference = clean[i - delay];
    signal += reference * reference;
    error += (samples[i] - reference) * (samples[i] - reference);
  }
  return 10 * std::log10(signal / error);
}

Samples Interleave(const Samples& left, const Samples& right) {
  Samples pairs;
  for (size_t i = 0; i < left.size(); ++i) pairs.insert(pairs.end(), {left[i], right[i]});
  return pairs;
}

TEST(AudioDenoise, LagsEightySamplesAtEightKilohertzInBothModes) {
  const Samples speech = Speech(8000, 6, 3000);
  const Samples noisy = Mix(speech, Noise(speech.size(), 300, 1));
  for (const bool light : {false, true}) {
    EXPECT_EQ(Delay(speech, Clean(8000, 1, light, noisy), 400), 80u);
    EXPECT_GT(Ratio(speech, Clean(8000, 1, light, speech), 80), 20);
  }
}

TEST(AudioDenoise, LowersNoiseAtEveryRateAndLessInLightMode) {
  for (const int rate : kRates) {
    const auto count = static_cast<size_t>(4 * rate);
    const Samples noise = Noise(count, 1000, 2);
    const Samples normal = Clean(rate, 1, false, noise);
    const Samples light = Clean(rate, 1, true, noise);
    const double before = Level(noise, count / 2, normal.size());
    const double byNormal = Decibels(before / Level(normal, count / 2, normal.size()));
    const double byLight = Decibels(before / Level(light, count / 2, light.size()));
    EXPECT_GT(byNormal, 12) << rate;
    EXPECT_LT(byNormal, 14) << rate;
    EXPECT_GT(byLight, 8.5) << rate;
    EXPECT_LT(byLight, 9) << rate;
  }
}

TEST(AudioDenoise, LowersTheNoiseBetweenWordsAndBringsTheSpeechNearer) {
  for (const int rate : kRates) {
    const Samples speech = Speech(rate, 10, 2000);
    const Samples noisy = Mix(speech, Noise(speech.size(), 630, 3));
    const auto lag = static_cast<size_t>(rate / 100);
    const auto pause = static_cast<size_t>(4.6 * rate);  // Until five seconds.
    const double before = Ratio(speech, noisy, 0);
    for (const bool light : {false, true}) {
      const Samples out = Clean(rate, 1, light, noisy);
      EXPECT_GT(Ratio(speech, out, lag), before + 0.5) << rate;
      const double lowered =
          Level(noisy, pause, pause + 30 * lag) / Level(out, pause, pause + 30 * lag);
      EXPECT_GT(Decibels(lowered), light ? 7 : 9) << rate;
    }
  }
}

TEST(AudioDenoise, KeepsSilenceSilent) {
  for (const bool light : {false, true}) {
    const Samples out = Clean(16000, 1, light, Samples(16000, 0));
    EXPECT_EQ(out, Samples(16000, 0));
  }
  Samples speech = Speech(16000, 3, 3000);
  const size_t end = speech.size();
  speech.resize(end + 16000);
  const Samples out = Clean(16000, 1, false, speech);
  EXPECT_EQ(Level(out, end + 160, out.size()), 0);
}

TEST(AudioDenoise, CleansEachChannelOnItsOwn) {
  const Samples left = Mix(Speech(16000, 4, 3000), Noise(64000, 500, 4));
  const Samples right = Noise(64000, 100, 5);
  EXPECT_EQ(Clean(16000, 2, false, Interleave(left, right)),
            Interleave(Clean(16000, 1, false, left), Clean(16000, 1, false, right)));
}

// 441 samples: the channels change places in every block, and one more hop of delay makes up for
// what a block lacks of a whole one.
TEST(AudioDenoise, GoesOnWithTheOtherChannelAfterAnOddBlock) {
  const Samples left = Noise(22050, 500, 6);
  const Samples right = Noise(22050, 100, 7);
  const Samples both = Clean(22050, 2, false, Interleave(left, right));
  const Samples alone = Interleave(Clean(22050, 1, false, left), Clean(22050, 1, false, right));
  ASSERT_GT(both.size(), 40000u);
  EXPECT_TRUE(std::equal(both.begin() + 440, both.begin() + 40000, alone.begin()));
}

// A heap block of just that size: an address sanitizer sees one sample more.
TEST(AudioDenoise, TakesTheTruncatedBlockAndNeverOneMore) {
  const struct {
    int rate, channels;
    size_t block;
  } cases[] = {{8000, 1, 80}, {22050, 2, 441}, {11025, 1, 110}, {7999, 1, 79}, {44100, 2, 882}};
  for (const auto& [rate, channels, block] : cases) {
    CAudioDenoise denoise(rate, channels);
    const auto samples = std::make_unique<short[]>(block);
    Samples guarded(block + 1);
    for (int i = 0; i < 20; ++i) {
      std::fill_n(samples.get(), block, short{1000});
      denoise.Process(samples.get());
      std::fill(guarded.begin(), guarded.end(), short{12345});
      denoise.Process(guarded.data());
      EXPECT_EQ(guarded.back(), 12345);
    }
    EXPECT_NE(guarded[block - 1], 12345);
  }
}

TEST(AudioDenoise, ChangesItsModeWithoutAClick) {
  CAudioDenoise denoise(8000, 1);
  Samples tone(40000);
  for (size_t i = 0; i < tone.size(); ++i) {
    const double phase = 2 * std::numbers::pi * 200 * static_cast<double>(i) / 8000;
    tone[i] = static_cast<short>(std::lrint(8000 * std::sin(phase)));
  }
  for (size_t i = 0; i < tone.size(); i += 80) {
    denoise.EnableLightDenoise(i / 800 % 2 == 0);
    denoise.Process(tone.data() + i);
  }
  int sharpest = 0;
  for (size_t i = 16000; i < tone.size(); ++i) {
    sharpest = std::max(sharpest, std::abs(tone[i] - 2 * tone[i - 1] + tone[i - 2]));
  }
  // The unchanged tone has 197; a gain that jumped by 11 dB would have some 2000.
  EXPECT_LT(sharpest, 250);
}

TEST(AudioDenoise, AllocatesNothingPerBlock) {
  for (const int rate : kRates) {
    for (const int channels : {1, 2}) {
      CAudioDenoise denoise(rate, channels);
      Samples block = Noise(BlockOf(rate, channels), 1000, 8);
      const size_t before = AllocationCount();
      for (int i = 0; i < 50; ++i) denoise.Process(block.data());
      EXPECT_EQ(AllocationCount(), before) << rate << " " << channels;
    }
  }
}

TEST(AudioDenoise, LeavesFormatsAloneThatItDoesNotTake) {
  CapturedStderr log;
  CAudioDenoise noRate(0, 1);
  CAudioDenoise noChannels(16000, 0);
  Samples samples = Noise(160, 1000, 9);
  const Samples before = samples;
  noRate.EnableLightDenoise(true);
  noRate.Process(samples.data());
  noChannels.Process(samples.data());
  EXPECT_EQ(samples, before);
  const std::string text = log.Text();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
}

}  // namespace
