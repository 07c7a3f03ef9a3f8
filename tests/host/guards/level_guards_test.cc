#include "guards/level_guards.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "guards/treatments.h"

namespace host {
namespace {

bool Hits(const std::vector<GuardHit>& hits, Guard guard) { return Find(hits, guard) != nullptr; }

// A square wave of so many steps of 16 bits, on an offset.
Sound Steps(int steps, double offset = 0) {
  Sound sound = Silence(1);
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    sound.samples[i] = static_cast<float>(offset + (i / 50 % 2 == 0 ? steps : 0) / 32768.0);
  }
  return sound;
}

TEST(SilentGuard, TwoStepsOf16BitsAreSilenceAndThreeAreNot) {
  const Sound in = Sine(440, 0.1, 1);
  EXPECT_TRUE(Hits(Check(in, Steps(2)), Guard::kSilent));
  EXPECT_FALSE(Hits(Check(in, Steps(3)), Guard::kSilent));
  EXPECT_TRUE(Hits(Check(in, Steps(2, 0.25)), Guard::kSilent));
}

TEST(SilentGuard, AnInputBelowMinus60DecibelsMayBeLost) {
  const double limit = std::sqrt(2) * 0.001;  // The amplitude of a sine of -60 dBFS.
  EXPECT_TRUE(Hits(Check(Sine(440, 1.01 * limit, 1), Silence(1)), Guard::kSilent));
  EXPECT_FALSE(Hits(Check(Sine(440, 0.99 * limit, 1), Silence(1)), Guard::kSilent));
  EXPECT_FALSE(Hits(Check(Steps(0, 0.25), Silence(1)), Guard::kSilent));  // An offset is no sound.
}

TEST(SilentGuard, OneDeadChannelIsEnough) {
  Sound out = Sine(440, 0.1, 1, 2);
  for (size_t i = 1; i < out.samples.size(); i += 2) out.samples[i] = 0;
  const auto hits = Check(Sine(440, 0.1, 1, 2), out);
  ASSERT_TRUE(Hits(hits, Guard::kSilent));
  EXPECT_TRUE(Find(hits, Guard::kSilent)->fails);
  EXPECT_EQ(Find(hits, Guard::kSilent)->channel, 1);
}

TEST(SilentGuard, WithoutAnInputItOnlyWarns) {
  EXPECT_EQ(Names(CheckAlone(Silence(1))), "silent");
  EXPECT_EQ(Names(CheckAlone(Sine(440, 0.1, 1))), "");
}

TEST(SilentGuard, AVeryShortInputMayStillBeOnItsWay) {
  EXPECT_FALSE(Hits(Check(Sine(440, 0.1, 0.24), Silence(0.24)), Guard::kSilent));
  EXPECT_TRUE(Hits(Check(Sine(440, 0.1, 0.26), Silence(0.26)), Guard::kSilent));
}

TEST(DigitalSilenceGuard, TakesThePlaceOfSilentForANullDevice) {
  const Sound in = Sine(440, 0.1, 1);
  const Signal input = in.AsSignal();
  const Sound out = Silence(1);
  Signal output = out.AsSignal();
  const RunFacts facts{.nullDevice = true};
  EXPECT_EQ(Names(CheckGuards({.input = &input, .output = &output, .facts = facts})),
            "digital_silence");
  const Sound noisy = Steps(1);
  output = noisy.AsSignal();
  EXPECT_EQ(Names(CheckGuards({.output = &output, .facts = facts})), "");
}

// A sine in integers of which `runs` runs of three samples stand at full scale.
Sound Clipping(int runs, double seconds = 1) {
  Sound sound = Integers(Sine(440, 0.5, seconds));
  for (int run = 0; run < runs; ++run) {
    for (size_t i = 0; i < 3; ++i) sound.samples[1000 + 100 * static_cast<size_t>(run) + i] = -1;
  }
  return sound;
}

TEST(ClippedGuard, FailsFromOneSampleIn10000OnAndWarnsBelow) {
  const Sound in = Integers(Sine(440, 0.5, 1));
  EXPECT_FALSE(Hits(Check(in, Clipping(0)), Guard::kClipped));
  const auto few = Check(in, Clipping(1));  // 3 of 48000
  ASSERT_TRUE(Hits(few, Guard::kClipped));
  EXPECT_FALSE(Find(few, Guard::kClipped)->fails);
  EXPECT_DOUBLE_EQ(*Find(few, Guard::kClipped)->at, 1000.0 / 48000);
  const auto more = Check(in, Clipping(2));  // 6 of 48000
  ASSERT_TRUE(Hits(more, Guard::kClipped));
  EXPECT_TRUE(Find(more, Guard::kClipped)->fails);
}

TEST(ClippedGuard, WhatTheInputHadIsLeftOut) {
  EXPECT_FALSE(Hits(Check(Clipping(20), Clipping(20)), Guard::kClipped));
  EXPECT_FALSE(Hits(Check(Clipping(20), Clipping(22)), Guard::kClipped));
  EXPECT_TRUE(Hits(Check(Clipping(20), Clipping(23)), Guard::kClipped));
}

TEST(ClippedGuard, FloatsHaveNoFullScale) {
  Sound out = Clipping(100);
  out.bits = 0;
  EXPECT_FALSE(Hits(Check(Clipping(0), out), Guard::kClipped));
}

TEST(ClippedGuard, GoesByTheWidthOfTheIntegers) {
  Sound out = Silence(1);
  for (size_t i = 0; i < 4; ++i) out.samples[500 + i] = 127.0F / 128;
  out.bits = 8;
  EXPECT_TRUE(Hits(CheckAlone(out), Guard::kClipped));
  out.bits = 16;
  EXPECT_FALSE(Hits(CheckAlone(out), Guard::kClipped));
  for (const float size : {32766.0F, 32767.0F}) {
    for (size_t i = 0; i < 4; ++i) out.samples[500 + i] = size / 32768;
    EXPECT_EQ(Hits(CheckAlone(out), Guard::kClipped), size == 32767) << size;
  }
}

TEST(DcGuard, BeginsAtThreeThousandthsOfFullScale) {
  const Sound in = Sine(440, 0.2, 1);
  EXPECT_TRUE(Hits(Check(in, Shifted(in, 0.0032)), Guard::kDc));
  EXPECT_TRUE(Hits(Check(in, Shifted(in, -0.0032)), Guard::kDc));
  EXPECT_FALSE(Hits(Check(in, Shifted(in, 0.0028)), Guard::kDc));
}

TEST(DcGuard, LeavesOutWhatTheInputHadAndItsGain) {
  const Sound in = Shifted(Sine(440, 0.05, 1), 0.01);
  EXPECT_FALSE(Hits(Check(in, Shifted(in, 0.0028)), Guard::kDc));
  EXPECT_FALSE(Hits(Check(in, Louder(in, 12)), Guard::kDc));
  EXPECT_TRUE(Hits(Check(in, Shifted(in, 0.0036)), Guard::kDc));
}

TEST(DcGuard, ASlowSoundIsNoOffset) {
  const Sound slow = Sine(3, 0.2, 1.5);  // Four periods and a half: a mean of 0.014, and no wonder.
  EXPECT_FALSE(Hits(CheckAlone(slow), Guard::kDc));
}

TEST(LevelGuard, AllowsTwelveDecibelsEitherWay) {
  const Sound in = Sine(440, 0.1, 2);
  EXPECT_FALSE(Hits(Check(in, Louder(in, 11.9)), Guard::kLevel));
  EXPECT_TRUE(Hits(Check(in, Louder(in, 12.1)), Guard::kLevel));
  EXPECT_FALSE(Hits(Check(in, Louder(in, -11.9)), Guard::kLevel));
  const auto hits = Check(in, Louder(in, -12.1));
  ASSERT_TRUE(Hits(hits, Guard::kLevel));
  EXPECT_FALSE(Find(hits, Guard::kLevel)->fails);
  EXPECT_EQ(Find(hits, Guard::kLevel)->text,
            "active level -12.1 dB against the input's, not -12 to +12 dB");
}

TEST(LevelGuard, PausesDoNotCount) {
  const Sound in = Sine(440, 0.1, 1);
  Sound out = in;
  out.samples.resize(out.samples.size() * 30);
  EXPECT_FALSE(Hits(Check(in, out), Guard::kLevel));
}

TEST(LevelGuard, ComparesMonoWithTheMeanOfChannels) {
  const Sound mono = Sine(440, 0.1, 2);
  GuardRules rules;
  rules.leastLevel = -0.1;
  rules.mostLevel = 0.1;
  EXPECT_FALSE(Hits(Check(mono, Sine(440, 0.1, 2, 2), rules), Guard::kLevel));
  EXPECT_FALSE(Hits(Check(Sine(440, 0.1, 2, 6), mono, rules), Guard::kLevel));
}

}  // namespace
}  // namespace host
