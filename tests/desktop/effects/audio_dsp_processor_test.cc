#include "engine_api/effects/audio_dsp_processor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/signals.h"

namespace {

std::vector<short> Process(CAudioDspProcessor& processor, std::vector<short> samples, int rate,
                           int channels, int size = 16) {
  const int frames = rate / 100;
  for (size_t at = 0; at + static_cast<size_t>(frames * channels) <= samples.size();
       at += static_cast<size_t>(frames * channels)) {
    EXPECT_EQ(
        processor.Process(reinterpret_cast<char*>(&samples[at]), frames, rate, channels, size),
        frames);
  }
  return samples;
}

TEST(CAudioDspProcessorTest, PassesEveryBitUntilItIsSwitchedOn) {
  const std::vector<short> noise = ToShorts(WhiteNoise(44100, 1, 1));
  CAudioDspProcessor processor;
  EXPECT_EQ(Process(processor, noise, 44100, 1), noise);
  processor.SetReverbExEnable(true);
  EXPECT_NE(Process(processor, noise, 44100, 1), noise);
  processor.SetReverbExEnable(false);
  Process(processor, noise, 44100, 1);
  EXPECT_EQ(Process(processor, noise, 44100, 1), noise);
}

TEST(CAudioDspProcessorTest, HasATailOf2SecondsThatEndsInSilence) {
  CAudioDspProcessor processor;
  processor.SetReverbExEnable(true);
  std::vector<short> samples = ToShorts(WhiteNoise(44100 * 10, 0.5, 1));
  std::fill(samples.begin() + 22050, samples.end(), short{0});
  const std::vector<double> whole = ToDoubles(Process(processor, samples, 44100, 1));
  const std::vector<double> out = OctaveBand(whole, 1000, 44100);
  const double start = Rms({out.data() + 22050 + 2205, 4410});
  const double later = Rms({out.data() + 22050 + 2205 + 44100, 4410});
  EXPECT_NEAR(Decibels(later / start), -60 / 2.1, 4);
  EXPECT_EQ(Peak({whole.data() + 44100 * 8, 88200}), 0);
}

TEST(CAudioDspProcessorTest, LeavesOtherSizesAlone) {
  CAudioDspProcessor processor;
  processor.SetReverbExEnable(true);
  const std::vector<short> noise = ToShorts(WhiteNoise(4410, 0.5, 1));
  EXPECT_EQ(Process(processor, noise, 44100, 2, 8), noise);
  EXPECT_EQ(Process(processor, noise, 44100, 2, 32), noise);
}

}  // namespace
