#include "guards/pair_guards.h"

#include <gtest/gtest.h>

#include <cmath>

#include "guards/treatments.h"

namespace host {
namespace {

bool Hits(const std::vector<GuardHit>& hits, Guard guard) { return Find(hits, guard) != nullptr; }

// `input` and part of another sound.
Sound Mixed(Sound sound, const Sound& other, double part) {
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    sound.samples[i] += static_cast<float>(part) * other.samples[i];
  }
  return sound;
}

// The same sound at any rate: 30 tones below 3 kHz that come and go at their own times, in stereo
// at 44.1 kHz.
Sound Between(int rate, double seconds) {
  const int channels = rate == 44100 ? 2 : 1;
  Sound sound = Silence(seconds, channels, rate);
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    const size_t frame = i / static_cast<size_t>(channels);
    const double time = static_cast<double>(frame) / rate;
    double sum = 0;
    for (int tone = 1; tone <= 30; ++tone) {
      sum += std::sin(2 * M_PI * 97.3 * tone * time + 1.7 * tone * tone) *
             std::sin(2 * M_PI * std::sqrt(tone) * time);
    }
    sound.samples[i] = static_cast<float>(0.02 * sum);
  }
  return sound;
}

TEST(UnchangedGuard, AHalfStepOf16BitsIsNoChangeAndAWholeOneIs) {
  const Sound in = Speech(1);
  const auto hits = Check(in, in);
  ASSERT_TRUE(Hits(hits, Guard::kUnchanged));
  EXPECT_EQ(Find(hits, Guard::kUnchanged)->text, "the same as the input");
  EXPECT_TRUE(Hits(Check(in, Integers(in)), Guard::kUnchanged));
  Sound out = in;
  out.samples[24000] += 1.0F / 32768;
  EXPECT_FALSE(Hits(Check(in, out), Guard::kUnchanged));
}

// A copy has nothing wrong with it beside its input; one that is longer may.
TEST(UnchangedGuard, IsAllThatIsSaidOfACopy) {
  const Sound in = Cut(Music(2), 1, 0.01);
  EXPECT_EQ(Names(Check(in, in)), "unchanged");
  GuardRules louder;
  louder.leastLevel = 3;
  EXPECT_EQ(Names(Check(in, in, louder)), "unchanged level");
  Sound longer = in;
  longer.samples.resize(in.samples.size() + 12000);
  longer.samples[in.samples.size() + 6000] = 0.5F;
  EXPECT_EQ(Names(Check(in, longer)), "unchanged click");
}

TEST(UnchangedGuard, IsSeenThroughADelay) {
  const Sound in = Speech(2);
  const auto hits = Check(in, Later(in, 0.089));
  ASSERT_TRUE(Hits(hits, Guard::kUnchanged));
  EXPECT_EQ(Find(hits, Guard::kUnchanged)->text, "the same as the input, 89.0 ms later");
  GuardRules rules;
  rules.comparable = false;
  EXPECT_FALSE(Hits(Check(in, Later(in, 0.089), rules), Guard::kUnchanged));
  EXPECT_TRUE(Hits(Check(in, in, rules), Guard::kUnchanged));
}

TEST(UnchangedGuard, SilenceAndOtherFormsAreNotCompared) {
  EXPECT_FALSE(Hits(Check(Silence(1), Silence(1)), Guard::kUnchanged));
  EXPECT_FALSE(Hits(Check(Sine(440, 0.1, 1), Sine(440, 0.1, 1, 2)), Guard::kUnchanged));
}

// Unrelated noise brings the correlation to where the guard begins.
TEST(InvertedGuard, BeginsAtACorrelationOfMinusOneHalf) {
  const Sound in = Noise(0.1, 2, 1);
  const Sound strange = Noise(0.1, 2, 2);
  EXPECT_TRUE(Hits(Check(in, Mixed(Inverted(in), strange, 1.6)), Guard::kInverted));   // -0.53
  EXPECT_FALSE(Hits(Check(in, Mixed(Inverted(in), strange, 1.9)), Guard::kInverted));  // -0.47
  EXPECT_FALSE(Hits(Check(in, in), Guard::kInverted));
}

TEST(InvertedGuard, CannotTellOfATone) {
  for (const double frequency : {100.0, 440.0, 997.0}) {
    const Sound in = Sine(frequency, 0.5, 3);
    EXPECT_FALSE(Hits(Check(in, Later(in, 0.5 / frequency)), Guard::kInverted)) << frequency;
    EXPECT_FALSE(Hits(Check(in, Later(in, 20.5 / frequency)), Guard::kInverted)) << frequency;
    Sound turned = in;
    for (float& sample : turned.samples) sample = -sample;
    EXPECT_FALSE(Hits(Check(in, turned), Guard::kInverted)) << frequency;
  }
}

TEST(InvertedGuard, SeesOneChannelOfTwoAndThroughADelay) {
  const Sound in = Music(2);
  Sound out = in;
  for (size_t i = 1; i < out.samples.size(); i += 2) out.samples[i] *= -1;
  const auto hits = Check(in, out);
  ASSERT_TRUE(Hits(hits, Guard::kInverted));
  EXPECT_EQ(Find(hits, Guard::kInverted)->channel, 1);
  EXPECT_TRUE(Hits(Check(in, Inverted(Later(in, 0.3))), Guard::kInverted));
}

TEST(InvertedGuard, SeesThroughAnotherRateAndOtherChannels) {
  const Sound out = Inverted(Between(16000, 2));
  const auto hits = Check(Between(44100, 2), out);
  EXPECT_EQ(Names(hits), "inverted");
  EXPECT_EQ(Names(Check(Between(44100, 2), Inverted(out))), "");
}

// Then nothing of an input channel is in the output channel of its place, and only the other one
// tells how late it is.
TEST(SwappedGuard, ChannelsThatHaveNothingInCommonAreSeen) {
  const Sound left = Music(3, 1);
  const Sound right = Speech(3);
  Sound in = Silence(3, 2);
  for (size_t i = 0; i < in.samples.size() / 2; ++i) {
    in.samples[2 * i] = left.samples[i];
    in.samples[2 * i + 1] = right.samples[i];
  }
  EXPECT_TRUE(Hits(Check(in, Swapped(Later(in, 0.1))), Guard::kSwapped));
  EXPECT_FALSE(Hits(Check(in, Later(in, 0.1)), Guard::kSwapped));
}

TEST(SwappedGuard, GoesByTheDifferenceOfTheChannels) {
  const Sound in = Music(2);
  EXPECT_TRUE(Hits(Check(in, Swapped(in)), Guard::kSwapped));
  EXPECT_TRUE(Hits(Check(in, Swapped(Later(in, 0.1))), Guard::kSwapped));
  EXPECT_FALSE(Hits(Check(in, in), Guard::kSwapped));
  // Two thirds of the way the two are still swapped, one third of the way they are not.
  Sound most = Mixed(Louder(Swapped(in), 20 * std::log10(0.67)), in, 0.33);
  Sound few = Mixed(Louder(Swapped(in), 20 * std::log10(0.33)), in, 0.67);
  EXPECT_TRUE(Hits(Check(in, most), Guard::kSwapped));
  EXPECT_FALSE(Hits(Check(in, few), Guard::kSwapped));
}

// One tone in the middle, another one at a side: half a period of the latter later its difference
// is turned and the sum is not, and any period of the former may be the delay.
TEST(SwappedGuard, CannotTellOfSteadyTones) {
  Sound in = Sine(440, 0.3, 3, 2, 44000);
  const Sound side = Sine(550, 0.1, 3, 2, 44000);
  for (size_t i = 1; i < in.samples.size(); i += 2) in.samples[i] += side.samples[i];
  Sound turned = in;
  for (size_t i = 1; i < in.samples.size(); i += 2) {
    turned.samples[i] -= 2 * side.samples[i];
  }
  EXPECT_EQ(Find(Check(in, turned), Guard::kSwapped), nullptr);
  EXPECT_EQ(Find(Check(in, Later(in, 200.0 / 44000)), Guard::kSwapped), nullptr);
  EXPECT_EQ(Find(Check(in, Later(in, 1000.0 / 44000)), Guard::kSwapped), nullptr);
}

double Energy(const Sound& sound) {
  double energy = 0;
  for (const float sample : sound.samples) energy += static_cast<double>(sample * sample);
  return energy;
}

// From 40 dB below the middle on, the sides are no stereo.
TEST(SwappedGuard, NothingCanBeSaidOfAStereoTooNarrow) {
  const Sound middle = Speech(3);
  const Sound side = Music(3, 1);
  for (const double below : {30.0, 50.0}) {
    const double gain = std::pow(10, -below / 20) * std::sqrt(Energy(middle) / Energy(side));
    Sound in = Silence(3, 2);
    for (size_t i = 0; i < in.samples.size(); ++i) {
      const double sides = (i % 2 == 0 ? gain : -gain) * static_cast<double>(side.samples[i / 2]);
      in.samples[i] = middle.samples[i / 2] + static_cast<float>(sides);
    }
    EXPECT_EQ(Hits(Check(in, Swapped(in)), Guard::kSwapped), below < 40) << below;
  }
}

TEST(SwappedGuard, NothingCanBeSaidOfTwoAlike) {
  const Sound in = Integers(Sine(440, 0.3, 1, 2));
  EXPECT_FALSE(Hits(Check(in, Swapped(in)), Guard::kSwapped));
}

}  // namespace
}  // namespace host
