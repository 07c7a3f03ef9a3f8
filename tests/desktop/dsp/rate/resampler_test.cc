#include "desktop/dsp/rate/resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "support/tone.h"

namespace desktop {
namespace {

using Samples = std::vector<short>;

// Hands the input over in blocks of `blockFrames` frames.
Samples InBlocks(const Samples& mono, uint32_t sourceRate, uint32_t targetRate,
                 size_t blockFrames) {
  Resampler resampler(sourceRate, 1, targetRate, 1, blockFrames);
  Samples out;
  Samples block(resampler.MaxFramesFor(blockFrames));
  for (size_t at = 0; at < mono.size(); at += blockFrames) {
    const size_t frames = std::min(blockFrames, mono.size() - at);
    const size_t given = resampler.Convert(&mono[at], frames, block.data());
    EXPECT_LE(given, resampler.MaxFramesFor(frames));
    out.insert(out.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(given));
  }
  return out;
}

TEST(Resampler, GivesTheSameSamplesHoweverTheInputIsCut) {
  const Samples in = Tone(440, 12000, 44100, 44100);
  for (const uint32_t target : {8000U, 16000U, 44100U, 48000U}) {
    const Samples whole = InBlocks(in, 44100, target, 44100);
    EXPECT_EQ(whole.size(), target);
    for (const size_t frames : {1U, 7U, 441U, 1024U}) {
      EXPECT_EQ(InBlocks(in, 44100, target, frames), whole) << target << " Hz, " << frames;
    }
  }
}

TEST(Resampler, SaysHowLateItIs) {
  EXPECT_EQ(Resampler(16000, 1, 48000, 1, 160).LagFrames(), 240U);
  EXPECT_EQ(Resampler(48000, 2, 16000, 1, 480).LagFrames(), 80U);
  EXPECT_EQ(Resampler(16000, 2, 16000, 1, 160).LagFrames(), 0U);
}

// To a part of a sample: as good as the tone that was made at the other rate.
TEST(Resampler, IsAsLateAsItSays) {
  for (const auto& [source, target] : {std::pair(44100U, 48000U),
                                       {48000U, 44100U},
                                       {44100U, 16000U},
                                       {16000U, 44100U},
                                       {44099U, 48000U}}) {
    const Samples out = InBlocks(
        Tone(997, 20000, static_cast<int>(source), static_cast<int>(source)), source, target, 1024);
    const Samples ideal = Tone(997, 20000, static_cast<int>(target), static_cast<int>(target));
    const size_t lag = Resampler(source, 1, target, 1, 1024).LagFrames();
    for (size_t i = target / 2; i < target; ++i) {
      ASSERT_NEAR(out[i], ideal[i - lag], 2) << source << " to " << target << ", " << i;
    }
  }
}

TEST(Resampler, KeepsAConstant) {
  for (const auto& [source, target] :
       {std::pair(44100U, 48000U), {48000U, 8000U}, {8000U, 44100U}, {44099U, 48000U}}) {
    const Samples out = InBlocks(Samples(source, 32001), source, target, 441);
    for (size_t i = target / 2; i < target; ++i) ASSERT_EQ(out[i], 32001) << source << " " << i;
  }
}

// Ratios with too many places for a table of filters.
TEST(Resampler, ChangesOddRatesAsWell) {
  for (const auto& [source, target] :
       {std::pair(44099, 48000), {48000, 44099}, {11025, 32000}, {96001, 48000}}) {
    const double half = std::min(source, target) / 2.0;
    for (const double part : {0.1, 0.9}) {
      const Samples out =
          InBlocks(Tone(part * half, 30000, source, source), static_cast<uint32_t>(source),
                   static_cast<uint32_t>(target), 1024);
      const ToneFit fit = FitTone(out, part * half, target);
      EXPECT_NEAR(fit.amplitude, 30000, 15) << source << " to " << target << " " << part;
      EXPECT_LT(fit.residualDb, -86) << source << " to " << target << " " << part;
    }
  }
}

// From the half of the target rate on: 92 dB down, which leaves the last bit.
TEST(Resampler, LeavesNothingOfWhatTheTargetCannotHold) {
  for (const int target : {8000, 16000, 44100}) {
    for (const double part : {1.001, 1.02, 1.08}) {
      const Samples out = InBlocks(Tone(part * target / 2, 30000, 48000, 48000), 48000,
                                   static_cast<uint32_t>(target), 480);
      const size_t start = out.size() / 2;
      for (size_t i = start; i < out.size(); ++i)
        ASSERT_LE(std::abs(out[i]), 1) << target << " " << part;
    }
  }
}

TEST(Resampler, TakesNoMoreThanAnnounced) {
  Resampler resampler(16000, 1, 8000, 1, 100);
  const Samples in(101, 5);
  Samples out(200, 77);
  EXPECT_EQ(resampler.Convert(in.data(), 101, out.data()), 0U);
  EXPECT_EQ(out, Samples(200, 77));
}

TEST(Resampler, IsNotOpenWithoutAFormat) {
  EXPECT_TRUE(Resampler(1, 1, 1, 1, 1).IsOpen());
  EXPECT_TRUE(Resampler(48000, 1, 8000, 1, 1).IsOpen());
  for (const Resampler& resampler :
       {Resampler(0, 1, 1, 1, 1), Resampler(1, 0, 1, 1, 1), Resampler(1, 1, 0, 1, 1),
        Resampler(1, 1, 1, 0, 1), Resampler(1, 1, 1, 1, 0), Resampler(1, 1, 1000000, 1, 2),
        Resampler(48000, 1, 48, 1, 1)}) {
    EXPECT_FALSE(resampler.IsOpen());
    EXPECT_EQ(resampler.LagFrames(), 0U);
  }
  short sample = 77;
  EXPECT_EQ(Resampler(0, 1, 1, 1, 1).Convert(&sample, 1, &sample), 0U);
  EXPECT_EQ(sample, 77);
}

}  // namespace
}  // namespace desktop
