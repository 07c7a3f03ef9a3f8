#include "desktop/common/resampler.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/tone.h"

namespace desktop {
namespace {

using Samples = std::vector<short>;

// Hands the input over in pieces of `piece` frames.
Samples InPieces(const Samples& mono, uint32_t sourceRate, uint32_t targetRate, uint32_t piece) {
  Resampler resampler(sourceRate, 1, targetRate, 1, piece);
  Samples out;
  Samples block(resampler.MostFramesFor(piece));
  for (size_t at = 0; at < mono.size(); at += piece) {
    const auto frames = static_cast<uint32_t>(std::min<size_t>(piece, mono.size() - at));
    const uint32_t given = resampler.Convert(&mono[at], frames, block.data());
    EXPECT_LE(given, resampler.MostFramesFor(frames));
    out.insert(out.end(), block.begin(), block.begin() + given);
  }
  return out;
}

TEST(Resampler, GivesTheSameSamplesHoweverTheInputIsCut) {
  const Samples in = Tone(440, 12000, 44100, 44100);
  for (const uint32_t target : {8000U, 16000U, 44100U, 48000U}) {
    const Samples whole = InPieces(in, 44100, target, 44100);
    EXPECT_EQ(whole.size(), target);
    for (const uint32_t piece : {1U, 7U, 441U, 1024U}) {
      EXPECT_EQ(InPieces(in, 44100, target, piece), whole) << target << " Hz, " << piece;
    }
  }
}

TEST(Resampler, SaysHowLateItIs) {
  EXPECT_EQ(Resampler(16000, 1, 48000, 1, 160).LagFrames(), 240U);
  EXPECT_EQ(Resampler(48000, 2, 16000, 1, 480).LagFrames(), 80U);
  EXPECT_EQ(Resampler(16000, 2, 16000, 1, 160).LagFrames(), 0U);
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
        Resampler(1, 1, 1, 0, 1), Resampler(1, 1, 1, 1, 0), Resampler(1, 1, 1000000, 1, 2)}) {
    EXPECT_FALSE(resampler.IsOpen());
    EXPECT_EQ(resampler.LagFrames(), 0U);
  }
  short sample = 77;
  EXPECT_EQ(Resampler(0, 1, 1, 1, 1).Convert(&sample, 1, &sample), 0U);
  EXPECT_EQ(sample, 77);
}

}  // namespace
}  // namespace desktop
