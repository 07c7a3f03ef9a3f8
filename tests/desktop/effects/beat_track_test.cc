#include "engine_api/effects/beat_track.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "support/captured_stderr.h"
#include "support/drum_loop.h"
#include "support/signals.h"
#include "support/voice.h"

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

namespace {

struct Release {
  void operator()(IBeatTrack* tracker) const { tracker->Destroy(); }
};
using Tracker = std::unique_ptr<IBeatTrack, Release>;

// Notes each beat with the samples handed over before it.
class Listener : public IBeatTrackNotify {
 public:
  void NotifyBeat(int bpm, float power) override {
    times.push_back(now);
    tempi.push_back(bpm);
    powers.push_back(power);
  }
  void NotifyStartFive() override { startsAfter.push_back(times.size()); }

  double now = 0;  // Seconds.
  std::vector<double> times;
  std::vector<int> tempi;
  std::vector<float> powers;
  std::vector<size_t> startsAfter;
};

// Plays `samples` to a new tracker in blocks of `block` and returns what it told.
Listener Listen(std::vector<short> samples, int rate, int channels, int block, int delay = 0) {
  Listener listener;
  const Tracker tracker(CreateBeatTrack(rate, channels));
  tracker->Start(0, &listener, delay);
  const int count = static_cast<int>(samples.size());
  for (int done = 0; done < count; done += block) {
    const int length = std::min(block, count - done);
    listener.now = static_cast<double>(done + length) / rate / channels;
    const size_t before = listener.times.size();
    const int status = tracker->Detectbeat(&samples[static_cast<size_t>(done)], length);
    EXPECT_EQ(status, listener.times.size() > before ? 1 : 0);
  }
  tracker->Stop();
  return listener;
}

// The share of beats after 10 s that lie within 70 ms of one of the loop.
double OnTheGrid(const Listener& listener, const DrumLoop& loop) {
  int told = 0;
  int right = 0;
  for (const double time : listener.times) {
    if (time < 10) continue;
    ++told;
    right += std::any_of(loop.beats.begin(), loop.beats.end(),
                         [&](double beat) { return std::fabs(beat - time) < 0.07; });
  }
  return told > 0 ? static_cast<double>(right) / told : 0;
}

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

TEST(BeatTrack, TellsTheTempoOfARockSong) {
  for (const int bpm : {75, 100, 140, 165}) {
    const DrumLoop loop = RenderLoop(Groove::kRock, bpm, 20, 0.1, 22050);
    EXPECT_NEAR(Listen(loop.samples, 22050, 1, 220).tempi.back(), bpm, 0.02 * bpm);
  }
}

TEST(BeatTrack, WorksAtEveryRateMonoAndStereo) {
  for (const int rate : {8000, 16000, 44100, 48000}) {
    for (const int channels : {1, 2}) {
      const DrumLoop loop = RenderLoop(Groove::kRock, 120, 20, 0.2, rate, channels);
      const Listener listener = Listen(loop.samples, rate, channels, rate / 100 * channels);
      EXPECT_GE(OnTheGrid(listener, loop), 0.9) << rate << " Hz, " << channels;
      EXPECT_NEAR(listener.tempi.back(), 120, 2);
    }
  }
}

TEST(BeatTrack, HearsChannelsThatCancelEachOther) {
  const DrumLoop loop = RenderLoop(Groove::kRock, 120, 12, 0.2, 22050);
  const Listener mono = Listen(loop.samples, 22050, 1, 220);
  ASSERT_THAT(mono.times, testing::Not(IsEmpty()));
  const std::vector<short> stereo = Interleaved(loop.samples, Opposed(loop.samples));
  const Listener listener = Listen(stereo, 22050, 2, 440);
  EXPECT_THAT(listener.times, testing::Pointwise(testing::DoubleEq(), mono.times));
  // As one channel says that is beside a silent one.
  const std::vector<short> silence(loop.samples.size());
  EXPECT_EQ(Listen(Interleaved(silence, loop.samples), 22050, 2, 440).times, listener.times);
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

TEST(BeatTrack, FindsTheBeatAgainAfterAJump) {
  DrumLoop loop = RenderLoop(Groove::kHouse, 120, 19, 0.2, 22050);
  constexpr int kJump = 4000;
  loop.samples.insert(loop.samples.begin() + 22050 * 101 / 10, kJump, 0);
  const Listener listener = Listen(loop.samples, 22050, 1, 220);
  for (const double time : listener.times) {
    if (time < 17) continue;
    EXPECT_NEAR(std::remainder(time - 0.2 - kJump / 22050.0, 0.5), 0, 0.07) << time;
  }
}

TEST(BeatTrack, TellsTheFirstBeatWithinSixSeconds) {
  const DrumLoop loop = RenderLoop(Groove::kRock, 110, 10, 0.2, 22050);
  const Listener listener = Listen(loop.samples, 22050, 1, 220);
  ASSERT_THAT(listener.times, testing::Not(IsEmpty()));
  EXPECT_LT(listener.times.front(), 6);
}

TEST(BeatTrack, SaysTheSameHoweverTheInputIsCut) {
  const DrumLoop loop = RenderLoop(Groove::kSwing, 120, 12, 0.2, 8000, 2);
  const Listener whole = Listen(loop.samples, 8000, 2, 160);
  for (const int block : {1, 7, 4001}) {
    const Listener cut = Listen(loop.samples, 8000, 2, block);
    EXPECT_EQ(cut.tempi, whole.tempi) << block;
    EXPECT_EQ(cut.powers, whole.powers) << block;
  }
}

TEST(BeatTrack, PowerTellsClearBeatsFromNone) {
  const DrumLoop loop = RenderLoop(Groove::kHouse, 120, 20, 0.2, 22050);
  const Listener clear = Listen(loop.samples, 22050, 1, 220);
  EXPECT_THAT(clear.powers, Each(AllOf(Ge(0), Le(1))));
  EXPECT_GT(clear.powers.back(), 0.5F);
}

TEST(BeatTrack, StartsAtTheFifthBeat) {
  const DrumLoop loop = RenderLoop(Groove::kRock, 120, 12, 0.2, 22050);
  const Listener listener = Listen(loop.samples, 22050, 1, 220);
  EXPECT_THAT(listener.startsAfter, testing::ElementsAre(4));
}

TEST(BeatTrack, HasNoBeatInSilenceOrSteadyNoise) {
  EXPECT_THAT(Listen(std::vector<short>(16000 * 15), 16000, 1, 160).times, IsEmpty());
  std::vector<short> noise(16000 * 15);
  uint32_t state = 1;
  for (short& sample : noise) {
    state = state * 1664525 + 1013904223;
    sample = static_cast<short>(static_cast<int32_t>(state) / 131072);
  }
  EXPECT_THAT(Listen(noise, 16000, 1, 160).times, SizeIs(Le(2)));
}

TEST(BeatTrack, StopsWhenTheMusicStops) {
  DrumLoop loop = RenderLoop(Groove::kRock, 120, 12, 0.2, 22050);
  loop.samples.resize(22050 * 30);
  const Listener listener = Listen(loop.samples, 22050, 1, 220);
  EXPECT_LT(listener.times.back(), 16);
}

TEST(BeatTrack, TellsLaterByTheDelayAndTheRestAtTheEnd) {
  const DrumLoop loop = RenderLoop(Groove::kRock, 120, 12, 0.2, 22050);
  const Listener prompt = Listen(loop.samples, 22050, 1, 220);
  const Listener late = Listen(loop.samples, 22050, 1, 220, 1200);
  ASSERT_EQ(late.times.size(), prompt.times.size());
  EXPECT_NEAR(late.times.front() - prompt.times.front(), 1.2, 0.011);
  // Those that were not due yet come when it is stopped.
  EXPECT_EQ(late.times.back(), late.now);
  EXPECT_LT(prompt.times.back(), late.now);
}

TEST(BeatTrack, ClampsTheDelay) {
  const DrumLoop loop = RenderLoop(Groove::kRock, 120, 16, 0.2, 22050);
  const Listener latest = Listen(loop.samples, 22050, 1, 220, 10000);
  EXPECT_LT(latest.times.front(), latest.now);
  EXPECT_EQ(Listen(loop.samples, 22050, 1, 220, 60000).times, latest.times);
  EXPECT_EQ(Listen(loop.samples, 22050, 1, 220, -500).times,
            Listen(loop.samples, 22050, 1, 220, 0).times);
}

TEST(BeatTrack, AnswersByStatusWhatItCannotDo) {
  CapturedStderr log;
  short block[160] = {};
  for (const int rate : {0, -1, 7999, 192001}) {
    const Tracker tracker(CreateBeatTrack(rate, 1));
    tracker->Start(0, nullptr, 0);
    EXPECT_EQ(tracker->Detectbeat(block, 160), kBeatTrackBadFormat);
    EXPECT_EQ(tracker->Detectbeat(block, 160), kBeatTrackBadFormat);
    tracker->Stop();
  }
  EXPECT_THAT(log.Lines(), SizeIs(4));
  const Tracker tracker(CreateBeatTrack(16000, 1));
  EXPECT_EQ(tracker->Detectbeat(block, 160), kBeatTrackNotStarted);
  tracker->Start(0, nullptr, 0);
  EXPECT_EQ(tracker->Detectbeat(block, 160), 0);
  EXPECT_EQ(tracker->Detectbeat(nullptr, 160), kBeatTrackBadBlock);
  EXPECT_EQ(tracker->Detectbeat(block, -1), kBeatTrackBadBlock);
  tracker->Stop();
  EXPECT_EQ(tracker->Detectbeat(block, 160), kBeatTrackNotStarted);
}

TEST(BeatTrack, StartsAnew) {
  DrumLoop loop = RenderLoop(Groove::kRock, 120, 8, 0.2, 22050);
  const Tracker tracker(CreateBeatTrack(22050, 1));
  std::vector<int> tempi[2];
  for (std::vector<int>& told : tempi) {
    Listener listener;
    tracker->Start(0, &listener, 0);
    tracker->Detectbeat(loop.samples.data(), static_cast<int>(loop.samples.size()));
    tracker->Stop();
    told = listener.tempi;
  }
  EXPECT_THAT(tempi[0], testing::Not(IsEmpty()));
  EXPECT_EQ(tempi[0], tempi[1]);
}

}  // namespace
