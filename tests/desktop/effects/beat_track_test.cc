#include "engine_api/effects/beat_track.h"

#include <gmock/gmock.h>

#include "beat_listener.h"
#include "support/captured_stderr.h"
#include "support/drum_loop.h"
#include "support/signals.h"

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

namespace {

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
  for (const uint32_t seed : {1U, 7U, 25U}) {
    std::vector<short> noise(16000 * 15);
    uint32_t state = seed;
    for (short& sample : noise) {
      state = state * 1664525 + 1013904223;
      sample = static_cast<short>(static_cast<int32_t>(state) / 131072);
    }
    EXPECT_THAT(Listen(noise, 16000, 1, 160).times, SizeIs(Le(2))) << seed;
  }
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
