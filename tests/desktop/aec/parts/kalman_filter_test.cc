#include "desktop/aec/parts/kalman_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/allocation_count.h"
#include "support/talk.h"
#include "support/tone.h"

namespace {

constexpr int kRate = 16000;
constexpr int kBlock = 160;

Samples Cancel(desktop::KalmanFilter& filter, const Samples& far, const Samples& near) {
  Samples out(near.size());
  std::vector<float> farBlock(kBlock);
  std::vector<float> block(kBlock);
  for (size_t at = 0; at + kBlock <= near.size(); at += kBlock) {
    std::copy_n(&far[at], kBlock, farBlock.begin());
    std::copy_n(&near[at], kBlock, block.begin());
    filter.Process(farBlock.data(), block.data(), block.data());
    for (size_t i = 0; i < kBlock; ++i) out[at + i] = static_cast<short>(block[i]);
  }
  return out;
}

TEST(KalmanFilter, CancelsALinearEcho) {
  const Samples far = Talk(kRate, 8, 1);
  const Samples near = Sum(Echo(far, kRate, 60), Hiss(kRate, 8, 2, -75));
  desktop::KalmanFilter filter(kBlock, 32, 50);
  const Samples out = Cancel(filter, far, near);
  EXPECT_GT(LossDb(near, out, kRate, 1, 2), 10);
  EXPECT_GT(LossDb(near, out, kRate, 3, 8), 25);
}

TEST(KalmanFilter, LeavesTheNearEndInDoubleTalk) {
  const Samples far = Talk(kRate, 8, 3);
  const Samples speech = Talk(kRate, 8, 4);
  const Samples near = Sum(Echo(far, kRate, 60, 0), speech);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  EXPECT_GT(SdrDb(speech, Cancel(filter, far, near), kRate, 2, 0),
            SdrDb(speech, near, kRate, 2, 0) + 8);
}

TEST(KalmanFilter, LeavesANearEndWithoutFarEndAsItIs) {
  const Samples speech = Talk(kRate, 3, 5);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  EXPECT_EQ(Cancel(filter, Samples(speech.size()), speech), speech);
}

TEST(KalmanFilter, KeepsWhatItHasLearntWhenItsStartIsMoved) {
  const Samples far = Talk(kRate, 6, 6);
  const Samples near = Sum(Echo(far, kRate, 120), Hiss(kRate, 6, 7, -75));
  const Samples firstFar(far.begin(), far.begin() + 4 * kRate);
  const Samples firstNear(near.begin(), near.begin() + 4 * kRate);
  const Samples thenFar(far.begin() + 4 * kRate, far.end());
  const Samples thenNear(near.begin() + 4 * kRate, near.end());
  for (const size_t offset : {9U, 3U}) {
    desktop::KalmanFilter filter(kBlock, 32, 50);
    filter.SetOffset(6);
    Cancel(filter, firstFar, firstNear);
    filter.SetOffset(offset);
    EXPECT_GT(LossDb(thenNear, Cancel(filter, thenFar, thenNear), kRate, 0.1, 2), 22) << offset;
  }
}

TEST(KalmanFilter, ReachesAsFarAsItsOffset) {
  const Samples far = Talk(kRate, 6, 8);
  const Samples near = Sum(Echo(far, kRate, 480), Hiss(kRate, 6, 9, -75));
  desktop::KalmanFilter filter(kBlock, 32, 50);
  EXPECT_LT(LossDb(near, Cancel(filter, far, near), kRate, 3, 6), 3);
  filter.SetOffset(1000);
  EXPECT_EQ(filter.Offset(), 50);
  filter.SetOffset(43);
  EXPECT_GT(LossDb(near, Cancel(filter, far, near), kRate, 3, 6), 20);
}

TEST(KalmanFilter, NeverMakesTheNearEndMuchLouder) {
  const Samples far = Talk(kRate, 10, 10);
  Samples near = Echo(far, kRate, 60, 6);
  const Samples moved = Echo(far, kRate, 40, 0);
  for (size_t i = 5 * kRate; i < near.size(); ++i) near[i] = static_cast<short>(-moved[i]);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  const Samples out = Cancel(filter, far, near);
  EXPECT_GT(LossDb(near, out, kRate, 5, 5.5), -6);
  EXPECT_GT(LossDb(near, out, kRate, 7, 10), 12);
}

// Beside somebody loud the filter takes off next to nothing, and what it knows is true all the
// same.
TEST(KalmanFilter, KnowsThePathBesideALoudNearTalker) {
  const Samples far = Talk(kRate, 10, 20);
  Samples speech = Talk(kRate, 10, 21, -15);
  std::fill(speech.begin(), speech.begin() + 3 * kRate, short{0});
  const Samples near = Sum(Sum(Echo(far, kRate, 60), Hiss(kRate, 10, 22, -75)), speech);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  EXPECT_GT(SdrDb(speech, Cancel(filter, far, near), kRate, 3, 0),
            SdrDb(speech, near, kRate, 3, 0) + 14);
}

// The echo comes by another way, and the old path does not make it so loud that it is given up.
TEST(KalmanFilter, DoubtsAPathThatIsGone) {
  const Samples far = Talk(kRate, 10, 23);
  Samples near = Echo(far, kRate, 60, -6);
  const Samples moved = Echo(far, kRate, 40, -6);
  for (size_t i = 5 * kRate; i < near.size(); ++i) near[i] = moved[i];
  desktop::KalmanFilter filter(kBlock, 32, 50);
  EXPECT_GT(LossDb(near, Cancel(filter, far, near), kRate, 6.5, 8), 25);
}

// A third of the amplitude still comes by the way it came, and the filter takes off so much that it
// makes the near end no louder.
TEST(KalmanFilter, DoubtsAPathOfWhichMostIsGone) {
  for (const unsigned seed : {1U, 16U, 23U, 51U}) {
    const Samples far = Talk(kRate, 8, seed);
    Samples near = Echo(far, kRate, 60, -6);
    const Samples moved = Sum(Echo(far, kRate, 60, -16), Echo(far, kRate, 40, -6));
    for (size_t i = 5 * kRate; i < near.size(); ++i) near[i] = moved[i];
    desktop::KalmanFilter filter(kBlock, 32, 50);
    const Samples out = Cancel(filter, far, near);
    EXPECT_GT(LossDb(near, out, kRate, 6, 6.5), 12) << seed;
    EXPECT_GT(LossDb(near, out, kRate, 6.5, 8), 24) << seed;
  }
}

// A steady far end, of whose echo the filter takes off 1.4 dB all the time.
TEST(KalmanFilter, DoubtsAPathOfWhichHalfIsGone) {
  const Samples far = Hiss(kRate, 8, 30, -20);
  Samples near = Echo(far, kRate, 60, -6);
  const Samples moved = Sum(Echo(far, kRate, 60, -10.5), Echo(far, kRate, 40, -8));
  for (size_t i = 5 * kRate; i < near.size(); ++i) near[i] = moved[i];
  desktop::KalmanFilter filter(kBlock, 32, 50);
  const Samples out = Cancel(filter, far, near);
  EXPECT_GT(LevelDb(near, kRate, 6, 6.5) - LevelDb(out, kRate, 6, 6.5), 18);
}

// What a trial beside a talker has shown counts no more.
TEST(KalmanFilter, DoubtsAPathThatIsGoneAfterATalker) {
  const Samples far = Talk(kRate, 8, 23);
  Samples speech = Talk(kRate, 8, 31, -15);
  std::fill(speech.begin(), speech.begin() + 2 * kRate, short{0});
  std::fill(speech.begin() + 5 * kRate, speech.end(), short{0});
  Samples near = Sum(Echo(far, kRate, 60, -6), speech);
  const Samples moved = Echo(far, kRate, 40, -6);
  for (size_t i = 5 * kRate; i < near.size(); ++i) near[i] = moved[i];
  desktop::KalmanFilter filter(kBlock, 32, 50);
  const Samples out = Cancel(filter, far, near);
  EXPECT_GT(LossDb(near, out, kRate, 6.5, 8), 24);
}

// A hand before the microphone for 0.2 s.
TEST(KalmanFilter, KeepsAPathThatComesBackAtOnce) {
  for (const unsigned seed : {6U, 26U}) {
    const Samples far = Talk(kRate, 6, seed);
    Samples near = Sum(Echo(far, kRate, 60, -6), Hiss(kRate, 6, seed + 1, -75));
    const Samples moved = Echo(far, kRate, 40, -6);
    for (size_t i = 5 * kRate; i < 5 * kRate + kRate / 5; ++i) near[i] = moved[i];
    desktop::KalmanFilter filter(kBlock, 32, 50);
    const Samples out = Cancel(filter, far, near);
    EXPECT_GT(LossDb(near, out, kRate, 5.2, 5.7), 15) << seed;
  }
}

// To doubt what it knows would let it learn the talker. A filter that begins anew is no other.
TEST(KalmanFilter, LearnsThePathBesideATalkerWhoIsLoudFromTheStart) {
  for (const unsigned seed : {6U, 51U}) {
    const Samples far = Talk(kRate, 6, seed);
    const Samples echo = Echo(far, kRate, 60);
    const Samples speech = Talk(kRate, 6, seed + 1, -15);
    const Samples near = Sum(echo, speech);
    for (const bool anew : {false, true}) {
      desktop::KalmanFilter filter(kBlock, 32, 50);
      if (anew) {
        Cancel(filter, far, echo);
        filter.Restart();
      }
      EXPECT_GT(SdrDb(speech, Cancel(filter, far, near), kRate, 0.5, 0),
                SdrDb(speech, near, kRate, 0.5, 0) + 2)
          << seed << ", " << anew;
    }
  }
}

// Without its highs, in which a step would not stand out.
Samples Dull(Samples samples) {
  for (int pass = 0; pass < 4; ++pass) {
    double low = 0;
    for (short& sample : samples) {
      low += 0.15 * (sample - low);
      sample = static_cast<short>(std::lround(low));
    }
  }
  for (short& sample : samples) sample = static_cast<short>(std::clamp(4 * sample, -32768, 32767));
  return samples;
}

// How much stronger the bends are where blocks meet than within blocks, by power.
double Seam(const Samples& samples, size_t begin, size_t end) {
  double seams = 0;
  double others = 0;
  size_t count = 0;
  for (size_t i = std::max<size_t>(begin, 2); i < end; ++i) {
    const double bend = samples[i] - 2.0 * samples[i - 1] + samples[i - 2];
    (i % kBlock <= 1 ? seams : others) += bend * bend;
    count += i % kBlock <= 1 ? 1 : 0;
  }
  return seams / static_cast<double>(count) / (others / static_cast<double>(end - begin - count));
}

TEST(KalmanFilter, LeavesNoStepsWhereBlocksMeet) {
  const Samples far = Dull(Talk(kRate, 6, 11));
  const Samples near = Echo(far, kRate, 60);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  const Samples out = Cancel(filter, far, near);
  EXPECT_LT(Seam(out, 0, kRate), 5);
  EXPECT_LT(Seam(out, kRate, out.size()), 5);
}

// The echo comes by another way at once, and the filter begins anew.
TEST(KalmanFilter, LeavesNoStepWhereItGivesUp) {
  const Samples far = Dull(Talk(kRate, 10, 10));
  Samples near = Echo(far, kRate, 60, 6);
  const Samples moved = Echo(far, kRate, 40, 0);
  for (size_t i = 5 * kRate; i < near.size(); ++i) near[i] = static_cast<short>(-moved[i]);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  const Samples out = Cancel(filter, far, near);
  // The first step is that of the input.
  EXPECT_LT(Seam(out, 5 * kRate + kBlock / 2, 6 * kRate), 5);
}

// Moved beyond the start of the echo it knows less of it than it did.
TEST(KalmanFilter, LeavesNoStepWhereItIsMoved) {
  const Samples far = Dull(Talk(kRate, 4, 13));
  const Samples near = Echo(far, kRate, 60);
  desktop::KalmanFilter filter(kBlock, 32, 50);
  Samples out;
  for (const size_t offset : {0U, 9U}) {
    filter.SetOffset(offset);
    const auto begin = static_cast<ptrdiff_t>(out.size());
    const Samples part = Cancel(filter, Samples(far.begin() + begin, far.begin() + begin + 31840),
                                Samples(near.begin() + begin, near.begin() + begin + 31840));
    out.insert(out.end(), part.begin(), part.end());
  }
  EXPECT_LT(Seam(out, 31840 - 10, 31840 + 10), 5);
}

// Feeds silence at both ends.
void Rest(desktop::KalmanFilter& filter, int seconds) {
  std::vector<float> block(kBlock);
  for (int i = 0; i < 100 * seconds; ++i) filter.Process(block.data(), block.data(), block.data());
}

TEST(KalmanFilter, LearnsAfterALongSilenceAsItDoesAtFirst) {
  const Samples far = Talk(kRate, 6, 14);
  const Samples speech = Talk(kRate, 6, 15);
  const Samples near = Sum(Echo(far, kRate, 20, 0), speech);
  double sdr[2] = {};
  for (const int silence : {0, 180}) {
    desktop::KalmanFilter filter(kBlock, 10, 0);
    Rest(filter, silence);
    sdr[silence > 0] = SdrDb(speech, Cancel(filter, far, near), kRate, 1, 0);
  }
  EXPECT_GT(sdr[1], sdr[0] - 0.1);
}

TEST(KalmanFilter, KnowsThePathAfterALongSilence) {
  const Samples far = Talk(kRate, 5, 16);
  const Samples near = Sum(Echo(far, kRate, 20), Hiss(kRate, 5, 17, -75));
  desktop::KalmanFilter filter(kBlock, 10, 0);
  Cancel(filter, far, near);
  Rest(filter, 180);
  EXPECT_GT(LossDb(near, Cancel(filter, far, near), kRate, 0.1, 1), 25);
}

// A far end without highs, as from a telephone, teaches nothing about them.
TEST(KalmanFilter, LearnsFrequenciesThatComeLate) {
  const Samples far = Talk(kRate, 5, 18);
  const Samples near = Sum(Echo(far, kRate, 20), Hiss(kRate, 5, 19, -75));
  double loss[2] = {};
  for (const int seconds : {5, 120}) {
    desktop::KalmanFilter filter(kBlock, 10, 0);
    const Samples low = Tone(300, 3000, kRate, seconds * kRate);
    Cancel(filter, low, Echo(low, kRate, 20));
    loss[seconds > 5] = LossDb(near, Cancel(filter, far, near), kRate, 0.5, 2);
  }
  EXPECT_GT(loss[1], loss[0] - 1);
}

// Not while a second path is on trial either, beside a near end that has nothing to do with the far
// end.
TEST(KalmanFilter, AllocatesNothingPerBlock) {
  desktop::KalmanFilter filter(kBlock, 32, 50);
  std::vector<float> far(kBlock, 100.0f);
  for (const float level : {50.0f, 5000.0f}) {
    std::vector<float> near(kBlock);
    const size_t before = AllocationCount();
    for (int block = 0; block < 300; ++block) {
      for (size_t i = 0; i < near.size(); ++i) near[i] = i % 7 < 3 ? level : -level;
      filter.Process(far.data(), near.data(), near.data());
    }
    filter.SetOffset(7);
    EXPECT_EQ(AllocationCount(), before);
  }
}

}  // namespace
