#include "engine_api/aec/echo_delay_est.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/talk.h"

namespace {

// The delay at the end of every second, fed in blocks of `block` samples.
std::vector<int> Delays(CEchoDelayEst& estimator, const Samples& far, const Samples& near, int rate,
                        int block) {
  std::vector<int> delays;
  int fed = 0;
  for (size_t at = 0; at + static_cast<size_t>(block) <= near.size();
       at += static_cast<size_t>(block)) {
    estimator.ProcessFar(&far[at], block);
    estimator.ProcessNear(&near[at], block);
    fed += block;
    if (fed / rate != (fed - block) / rate) delays.push_back(estimator.GetDelay());
  }
  return delays;
}

TEST(EchoDelayEst, IsRightTo8MsFrom2SecondsOn) {
  for (const int delay : {0, 10, 89, 132, 300, 480}) {
    const Samples far = Talk(16000, 5, 1);
    const Samples near = Sum(Echo(far, 16000, delay), Hiss(16000, 5, 2, -60));
    CEchoDelayEst estimator(16000, 1);
    const std::vector<int> delays = Delays(estimator, far, near, 16000, 160);
    for (size_t second = 1; second < delays.size(); ++second) {
      EXPECT_NEAR(delays[second], delay, 8) << second + 1 << " s";
    }
  }
}

TEST(EchoDelayEst, StaysRightInDoubleTalk) {
  const Samples far = Talk(16000, 8, 3);
  const Samples near = Sum(Echo(far, 16000, 120), Talk(16000, 8, 4));
  CEchoDelayEst estimator(16000, 1);
  const std::vector<int> delays = Delays(estimator, far, near, 16000, 160);
  for (size_t second = 2; second < delays.size(); ++second) EXPECT_NEAR(delays[second], 120, 8);
}

TEST(EchoDelayEst, TakesOtherRatesChannelsAndOddCounts) {
  for (const int rate : {8000, 22050, 44100, 48000}) {
    const Samples far = Talk(rate, 4, 5);
    const Samples near = Echo(far, rate, 70);
    CEchoDelayEst estimator(rate, 1);
    EXPECT_NEAR(Delays(estimator, far, near, rate, 77).back(), 70, 8) << rate;
  }
  Samples far;
  Samples near;
  for (const short sample : Talk(16000, 4, 6)) far.insert(far.end(), {sample, sample});
  for (const short sample : Echo(Talk(16000, 4, 6), 16000, 70))
    near.insert(near.end(), {sample, 0});
  CEchoDelayEst estimator(16000, 2);
  EXPECT_NEAR(Delays(estimator, far, near, 32000, 333).back(), 70, 8);
}

// Calls of 77 samples end amid a frame, those of 154 do not.
TEST(EchoDelayEst, GoesOnWithAFrameThatIsCut) {
  const Samples talk = Talk(16000, 4, 6);
  const Samples echo = Echo(talk, 16000, 70);
  Samples far;
  Samples near;
  for (const short sample : talk) far.insert(far.end(), {sample, sample});
  for (const short sample : echo) near.insert(near.end(), {sample, sample});
  CEchoDelayEst estimator(16000, 2);
  for (size_t at = 0; at + 154 <= near.size(); at += 154) {
    estimator.ProcessFar(&far[at], 77);
    estimator.ProcessFar(&far[at + 77], 77);
    estimator.ProcessNear(&near[at], 154);
  }
  EXPECT_NEAR(estimator.GetDelay(), 70, 8);
}

TEST(EchoDelayEst, HearsChannelsThatCancelEachOther) {
  const Samples talk = Talk(16000, 4, 6);
  const Samples echo = Echo(talk, 16000, 70);
  CEchoDelayEst estimator(16000, 2);
  const Samples far = Interleaved(talk, Opposed(talk));
  const Samples near = Interleaved(echo, Opposed(echo));
  EXPECT_NEAR(Delays(estimator, far, near, 32000, 320).back(), 70, 8);
}

TEST(EchoDelayEst, Is0UntilKnown) {
  const Samples far = Talk(16000, 5, 7);
  const Samples near = Talk(16000, 5, 8);
  CEchoDelayEst estimator(16000, 1);
  EXPECT_EQ(estimator.GetDelay(), 0);
  EXPECT_THAT(Delays(estimator, far, near, 16000, 160), testing::Each(0));
}

TEST(EchoDelayEst, HoldsTheLastSureValueInSilence) {
  const Samples far = Talk(16000, 3, 9);
  CEchoDelayEst estimator(16000, 1);
  const int known = Delays(estimator, far, Echo(far, 16000, 150), 16000, 160).back();
  EXPECT_NEAR(known, 150, 8);
  const Samples silence = Hiss(16000, 5, 10, -90);
  EXPECT_THAT(Delays(estimator, silence, Hiss(16000, 5, 11, -90), 16000, 160),
              testing::Each(known));
  EXPECT_THAT(Delays(estimator, Samples(80000), Talk(16000, 5, 12), 16000, 160),
              testing::Each(known));
}

// An echo that is softer than the noise of converters.
TEST(EchoDelayEst, LearnsNothingOfANearEndThatIsSilent) {
  const Samples far = Talk(16000, 5, 16);
  CEchoDelayEst estimator(16000, 1);
  const int known = Delays(estimator, far, Echo(far, 16000, 150), 16000, 160).back();
  const Samples faint = Echo(far, 16000, 60, -66);
  EXPECT_GT(LevelDb(faint, 16000, 0, 5), -96);
  EXPECT_LT(LevelDb(faint, 16000, 0, 5), -84);
  // Three times, because what was learnt before is forgotten slowly.
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(Delays(estimator, far, faint, 16000, 160), testing::Each(known));
  }
}

// Nor of what a sensitive microphone makes of a loudspeaker that only hums.
TEST(EchoDelayEst, LearnsNothingOfAFarEndThatIsSilent) {
  const Samples far = Talk(16000, 5, 16);
  CEchoDelayEst estimator(16000, 1);
  const int known = Delays(estimator, far, Echo(far, 16000, 150), 16000, 160).back();
  const Samples faint = Talk(16000, 5, 17, -80);
  EXPECT_GT(LevelDb(faint, 16000, 0, 5), -96);
  EXPECT_LT(LevelDb(faint, 16000, 0, 5), -78);
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(Delays(estimator, faint, Echo(faint, 16000, 60, 26), 16000, 160),
                testing::Each(known));
  }
}

TEST(EchoDelayEst, FollowsAMovingTalkerWithin4Seconds) {
  const Samples far = Talk(16000, 10, 13);
  Samples near = Echo(far, 16000, 60);
  const Samples later = Echo(far, 16000, 140);
  std::copy(later.begin() + 64000, later.end(), near.begin() + 64000);
  CEchoDelayEst estimator(16000, 1);
  const std::vector<int> delays = Delays(estimator, far, near, 16000, 160);
  EXPECT_NEAR(delays[3], 60, 8);
  for (size_t second = 7; second < 10; ++second) EXPECT_NEAR(delays[second], 140, 8);
}

TEST(EchoDelayEst, TakesTheEndThatStopsForSilent) {
  const Samples far = Talk(16000, 3, 14);
  CEchoDelayEst estimator(16000, 1);
  Delays(estimator, far, Echo(far, 16000, 90), 16000, 160);
  const Samples more = Talk(16000, 5, 15);
  for (size_t at = 0; at + 160 <= more.size(); at += 160) {
    EXPECT_EQ(estimator.ProcessNear(&more[at], 160), 0);
  }
  EXPECT_NEAR(estimator.GetDelay(), 90, 8);
  // The last second of the other end may still come; then both belong together again.
  EXPECT_EQ(estimator.ProcessFar(more.data(), 16384 - 1600), 0);
  const Samples then = Talk(16000, 3, 18);
  EXPECT_NEAR(Delays(estimator, then, Echo(then, 16000, 140), 16000, 160)[2], 140, 8);
}

// A device that stops, and then goes on with what is new: after a while, which is known only when
// it is over, the ends belong together as if there had been no pause.
TEST(EchoDelayEst, PairsTheEndsAgainAfterOneHasStopped) {
  for (const double pause : {0.3, 1.5}) {
    for (const bool farStops : {false, true}) {
      const Samples far = Talk(16000, 2, 14);
      CEchoDelayEst estimator(16000, 1);
      Delays(estimator, far, Echo(far, 16000, 90), 16000, 160);
      const Samples alone = Talk(16000, pause, 15);
      for (size_t at = 0; at + 160 <= alone.size(); at += 160) {
        farStops ? estimator.ProcessNear(&alone[at], 160) : estimator.ProcessFar(&alone[at], 160);
      }
      const Samples then = Talk(16000, 5, 18);
      const Samples near = Echo(then, 16000, 140);
      EXPECT_NEAR(Delays(estimator, then, near, 16000, 160).back(), 140, 8)
          << pause << (farStops ? " s of near end" : " s of far end");
    }
  }
}

// What comes late is no pause, and what is made up for in the next half second was none either.
TEST(EchoDelayEst, WaitsForAnEndThatIsLate) {
  const Samples far = Talk(16000, 8, 19);
  const Samples near = Echo(far, 16000, 140);
  CEchoDelayEst estimator(16000, 1);
  size_t fed = 0;
  for (size_t at = 160; at <= far.size(); at += 160) {
    estimator.ProcessFar(&far[at - 160], 160);
    const size_t late = at % 16000 < 8000 ? 3200 : 1280;
    if (at <= fed + late) continue;
    estimator.ProcessNear(&near[fed], static_cast<int>(at - late - fed));
    fed = at - late;
  }
  EXPECT_NEAR(estimator.GetDelay(), 140, 8);
}

TEST(EchoDelayEst, TakesLongBlocksInEitherOrder) {
  const Samples far = Talk(16000, 5, 20);
  const Samples near = Echo(far, 16000, 140);
  for (const bool farFirst : {true, false}) {
    CEchoDelayEst estimator(16000, 1);
    for (size_t at = 0; at + 8000 <= far.size(); at += 8000) {
      if (farFirst) estimator.ProcessFar(&far[at], 8000);
      estimator.ProcessNear(&near[at], 8000);
      if (!farFirst) estimator.ProcessFar(&far[at], 8000);
    }
    EXPECT_NEAR(estimator.GetDelay(), 140, 8) << farFirst;
  }
}

TEST(EchoDelayEst, RefusesWhatItCannotTakeWithOneLine) {
  const short sample = 1;
  CapturedStderr log;
  CEchoDelayEst estimator(96000, 1);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(estimator.ProcessFar(&sample, 1), -1);
  EXPECT_EQ(estimator.GetDelay(), 0);
  EXPECT_EQ(log.Lines().size(), 1u);
  CEchoDelayEst good(16000, 1);
  EXPECT_EQ(good.ProcessFar(nullptr, 10), -1);
  EXPECT_EQ(good.ProcessNear(&sample, 0), -1);
}

}  // namespace
