#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "beat_listener.h"
#include "support/drum_loop.h"
#include "support/signals.h"

using testing::AllOf;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

namespace {

TEST(BeatTrack, FollowsEveryGrooveFrom70To180) {
  for (const Groove groove :
       {Groove::kRock, Groove::kHouse, Groove::kWaltz, Groove::kSwing, Groove::kBallad}) {
    for (int bpm = 70; bpm <= 180; bpm += 10) {
      const DrumLoop loop = RenderLoop(groove, bpm, 24, 0.31, 22050);
      const Listener listener = Listen(loop.samples, 22050, 1, 220);
      EXPECT_GE(OnTheGrid(listener, loop), 0.8) << static_cast<int>(groove) << " at " << bpm;
      ASSERT_THAT(listener.tempi, testing::Not(IsEmpty()));
      // Whatever level is heard as the beat, its tempo is exact.
      const double ratio = listener.tempi.back() / static_cast<double>(bpm);
      EXPECT_LT(std::min(std::fabs(ratio - 1), std::fabs(2 * ratio - 1)), 0.02) << bpm;
    }
  }
}

// Of two notes that are as loud the beat is the one that lasts longer.
TEST(BeatTrack, HearsTheLongerNoteOfAShuffleAsTheBeat) {
  for (int bpm = 90; bpm <= 180; bpm += 15) {
    const DrumLoop loop = RenderLoop(Groove::kShuffle, bpm, 16, 0.31, 22050);
    const Listener listener = Listen(loop.samples, 22050, 1, 220);
    EXPECT_GE(OnTheGrid(listener, loop), 0.9) << bpm;
    EXPECT_NEAR(listener.tempi.back(), bpm, 0.02 * bpm);
  }
}

// A beat of three eighths fits a guitar that plays sixteenths as well as one of two, and the loud
// cymbals half way as well as the drums; only the bass is on the beat.
TEST(BeatTrack, FollowsAFastGuitar) {
  for (int bpm = 130; bpm <= 180; bpm += 10) {
    const DrumLoop loop = RenderLoop(Groove::kGuitar, bpm, 16, 0.31, 22050);
    const Listener listener = Listen(loop.samples, 22050, 1, 220);
    EXPECT_GE(OnTheGrid(listener, loop), 0.9) << bpm;
    EXPECT_NEAR(listener.tempi.back(), bpm, 0.02 * bpm);
  }
}

TEST(BeatTrack, TellsTheTempoOfARockSong) {
  for (const int bpm : {75, 100, 140, 165}) {
    const DrumLoop loop = RenderLoop(Groove::kRock, bpm, 20, 0.1, 22050);
    EXPECT_NEAR(Listen(loop.samples, 22050, 1, 220).tempi.back(), bpm, 0.02 * bpm);
  }
}

TEST(BeatTrack, TellsClearBeatsFrom3AndAHalfSecondsOnAndNoneLate) {
  for (const Groove groove : {Groove::kRock, Groove::kHouse, Groove::kWaltz, Groove::kSwing}) {
    for (const int bpm : {97, 110, 120, 140}) {
      const DrumLoop loop = RenderLoop(groove, bpm, 8, 0.31, 22050);
      const Listener listener = Listen(loop.samples, 22050, 1, 220);
      ASSERT_THAT(listener.times, testing::Not(IsEmpty()));
      EXPECT_LT(listener.times.front(), 3.5) << static_cast<int>(groove) << " at " << bpm;
      for (const double time : listener.times) {
        if (time < 3.5) continue;
        EXPECT_TRUE(std::any_of(loop.beats.begin(), loop.beats.end(),
                                [&](double beat) { return std::fabs(beat - time) < 0.07; }))
            << time << " s, " << static_cast<int>(groove) << " at " << bpm;
      }
    }
  }
}

// What begins with a crash, or with silence before it, is followed from the same time on.
TEST(BeatTrack, IsNotDeafenedByALoudBeginning) {
  for (const double bpm : {97, 120, 140}) {
    const DrumLoop loop = RenderLoop(Groove::kBallad, bpm, 10, 0.31, 22050);
    std::vector<double> samples = ToDoubles(loop.samples);
    for (double& sample : samples) sample *= 0.03;
    const std::vector<double> crash = WhiteNoise(2205, 0.9, 1);
    for (size_t i = 0; i < crash.size(); ++i) {
      samples[6835 + i] += crash[i] * std::exp(-static_cast<double>(i) / 500);
    }
    const Listener listener = Listen(ToShorts(samples), 22050, 1, 220);
    ASSERT_THAT(listener.times, testing::Not(IsEmpty())) << bpm;
    EXPECT_LT(listener.times.front(), 3.5) << bpm;
  }
}

// A metronome has few onsets, each far above all else that it does.
TEST(BeatTrack, FollowsASlowMetronome) {
  std::vector<short> clicks(size_t{20} * 22050);
  for (size_t second = 0; second < 20; ++second) clicks[second * 22050 + 3000] = 20000;
  const Listener listener = Listen(clicks, 22050, 1, 220);
  // It may begin at twice the tempo.
  const auto from = std::find_if(listener.times.begin(), listener.times.end(),
                                 [](double time) { return time > 8; });
  EXPECT_NEAR(static_cast<double>(listener.times.end() - from), 12, 1);
  for (auto time = from; time != listener.times.end(); ++time) {
    EXPECT_NEAR(*time, std::round(*time) + 3000 / 22050.0, 0.04);
  }
}

// A drummer who drags once by 45 ms is caught up with over a few beats, neither at one blow nor
// slower.
TEST(BeatTrack, CatchesUpWithADragInSteps) {
  DrumLoop loop = RenderLoop(Groove::kHouse, 120, 16, 0.2, 22050);
  constexpr int kDrag = 1000;
  loop.samples.insert(loop.samples.begin() + 22050 * 101 / 10, kDrag, 0);
  const Listener listener = Listen(loop.samples, 22050, 1, 22);
  std::vector<double> late;
  for (const double time : listener.times) {
    if (time > 12) late.push_back(std::remainder(time - 0.2 - kDrag / 22050.0, 0.5));
  }
  ASSERT_THAT(late, SizeIs(Ge(3)));
  EXPECT_THAT(late[0], AllOf(Ge(-0.026), Le(-0.012)));
  EXPECT_NEAR(late[2], 0, 0.006);
}

// A drum on the beat and a softer cymbal half way, 24 s of a tempo that moves evenly by this share.
// Returns the times of the beats.
std::vector<double> RenderRamp(double bpm, double share, std::vector<double>& samples) {
  samples.assign(size_t{24} * 22050, 0.0);
  const std::vector<double> noise = WhiteNoise(1500, 0.4, 5);
  const auto strike = [&](double time, double drum, double cymbal) {
    const auto start = static_cast<size_t>(time * 22050);
    for (size_t i = 0; i < noise.size() && start + i < samples.size(); ++i) {
      const auto age = static_cast<double>(i);
      samples[start + i] += drum * std::exp(-age / 500) * std::sin(age * 0.02) +
                            cymbal * std::exp(-age / 200) * noise[i];
    }
  };
  std::vector<double> beats;
  for (double time = 0.3; time < 23.5;) {
    const double period = 60 / (bpm * (1 + share * time / 24));
    beats.push_back(time);
    strike(time, 0.6, 0.5);
    strike(time + period / 2, 0, 0.2);
    time += period;
  }
  return beats;
}

// By the tempo of the last seconds alone nearly all beats would be told more than 100 ms off.
TEST(BeatTrack, GoesAlongWithATempoThatMoves) {
  for (const auto& [bpm, share] :
       std::vector<std::pair<double, double>>{{84, 0.15}, {100, 0.15}, {126, 0.15}, {126, -0.15}}) {
    std::vector<double> samples;
    const std::vector<double> beats = RenderRamp(bpm, share, samples);
    const Listener listener = Listen(ToShorts(samples), 22050, 1, 220);
    int expected = 0;
    int found = 0;
    for (const double beat : beats) {
      if (beat < 8) continue;
      ++expected;
      found += std::any_of(listener.times.begin(), listener.times.end(),
                           [&](double time) { return std::fabs(time - beat) < 0.07; });
    }
    EXPECT_GE(found, 0.88 * expected) << bpm << " BPM, " << share;
  }
}

// Where the beats of the new piece are found, nothing draws them back to the drift of the old one.
TEST(BeatTrack, ForgetsADriftThatIsOver) {
  for (const int bpm : {90, 110, 130}) {
    std::vector<double> samples;
    RenderRamp(84, -0.15, samples);
    samples.resize(samples.size() + size_t{4} * 22050);
    const double start = static_cast<double>(samples.size()) / 22050 + 0.2;
    const std::vector<double> drums =
        ToDoubles(RenderLoop(Groove::kHouse, bpm, 12, 0.2, 22050).samples);
    samples.insert(samples.end(), drums.begin(), drums.end());
    int beat = 0;
    for (const double time : Listen(ToShorts(samples), 22050, 1, 220).times) {
      if (time < start || ++beat <= 4) continue;
      EXPECT_NEAR(std::remainder(time - start, 60.0 / bpm), 0, 0.03) << time << ", " << bpm;
    }
    EXPECT_GT(beat, 12);
  }
}

// The old beat goes on until the new one has been clearer three times in a row, by when the comb
// knows four of it.
TEST(BeatTrack, FindsTheBeatAgainAfterAJump) {
  DrumLoop loop = RenderLoop(Groove::kHouse, 120, 19, 0.2, 22050);
  constexpr int kJump = 4000;
  loop.samples.insert(loop.samples.begin() + 22050 * 101 / 10, kJump, 0);
  const Listener listener = Listen(loop.samples, 22050, 1, 220);
  int old = 0;
  for (const double time : listener.times) {
    if (time < 10.2) continue;
    const double late = std::remainder(time - 0.2 - kJump / 22050.0, 0.5);
    if (late < -0.07) ++old;
    if (time > 14) {
      EXPECT_NEAR(late, 0, 0.03) << time;
    }
  }
  EXPECT_EQ(old, 6);
}

// The first beat of the new ones is told at once, though it is due as soon as it is known.
TEST(BeatTrack, MissesNoBeatWhereItJumpsAhead) {
  for (const int cut : {3000, 5200, 5400}) {
    DrumLoop loop = RenderLoop(Groove::kHouse, 120, 19, 0.2, 22050);
    const auto from = loop.samples.begin() + 22050 * 101 / 10;
    loop.samples.erase(from, from + cut);
    const Listener listener = Listen(loop.samples, 22050, 1, 220);
    for (size_t i = 1; i < listener.times.size(); ++i) {
      EXPECT_LT(listener.times[i] - listener.times[i - 1], 0.6) << listener.times[i];
    }
    EXPECT_NEAR(std::remainder(listener.times.back() - 0.2 + cut / 22050.0, 0.5), 0, 0.03);
  }
}

// Drums so far under noise that they are only just heard.
std::vector<short> NoisyHouse(double gain) {
  std::vector<double> samples = ToDoubles(RenderLoop(Groove::kHouse, 120, 20, 0.31, 22050).samples);
  const std::vector<double> noise = WhiteNoise(20 * 22050, 0.2, 3);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = gain * samples[i] + noise[i];
  return ToShorts(samples);
}

TEST(BeatTrack, HearsDrumsUnderNoise) {
  const Listener listener = Listen(NoisyHouse(0.12), 22050, 1, 220);
  ASSERT_THAT(listener.times, testing::Not(IsEmpty()));
  EXPECT_LT(listener.times.front(), 7.5);
}

TEST(BeatTrack, KeepsABeatThatIsOnlyJustHeard) {
  const Listener listener = Listen(NoisyHouse(0.08), 22050, 1, 220);
  ASSERT_THAT(listener.times, SizeIs(Ge(10)));
  for (size_t i = 1; i < listener.times.size(); ++i) {
    EXPECT_LT(listener.times[i] - listener.times[i - 1], 0.6) << listener.times[i];
  }
}

TEST(BeatTrack, StopsWhenOnlyNoiseIsLeft) {
  std::vector<double> samples = WhiteNoise(24 * 22050, 0.2, 3);
  const DrumLoop loop = RenderLoop(Groove::kHouse, 120, 6, 0.31, 22050);
  const std::vector<double> drums = ToDoubles(loop.samples);
  for (size_t i = 0; i < drums.size(); ++i) samples[i] += 0.5 * drums[i];
  const Listener listener = Listen(ToShorts(samples), 22050, 1, 220);
  ASSERT_THAT(listener.times, SizeIs(Ge(5)));
  EXPECT_LT(listener.times.back(), 18);
}

}  // namespace
