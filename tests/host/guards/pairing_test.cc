#include "guards/pairing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "guards/coarse_delay.h"
#include "guards/places.h"
#include "guards/self_inversion.h"
#include "guards/treatments.h"

namespace host {
namespace {

// The sound as if it had been recorded at another rate.
Sound At(int rate, Sound sound) {
  sound.rate = rate;
  return sound;
}

Sound LaterBy(int64_t frames, const Sound& sound) {
  const auto stride = sound.channels;
  Sound later = sound;
  std::ranges::fill(later.samples, 0.0F);
  const auto total = static_cast<int64_t>(sound.AsSignal().Frames());
  for (int64_t frame = std::max<int64_t>(0, frames); frame < total + std::min<int64_t>(0, frames);
       ++frame) {
    for (int c = 0; c < stride; ++c) {
      later.samples[static_cast<size_t>(frame * stride + c)] =
          sound.samples[static_cast<size_t>((frame - frames) * stride + c)];
    }
  }
  return later;
}

Match MatchOf(const Sound& in, const Sound& out) {
  const Signal input = in.AsSignal();
  const Signal output = out.AsSignal();
  InputStudy study(input);
  return Pairing(study, output, {}).Of(0);
}

std::optional<int64_t> CoarseDelayOf(const Sound& in, const Sound& out) {
  const Signal input = in.AsSignal();
  const Signal output = out.AsSignal();
  const Track inTrack(input, out.rate);
  const Track outTrack(output, out.rate);
  return CoarseDelay({inTrack, 0, outTrack, 0, out.rate}, -out.rate / 4, out.rate);
}

// Whatever the rate that delays are looked for at first, they are known to a sample, up to the
// ends of what is allowed.
TEST(Pairing, DelaysAreKnownToASample) {
  for (const int rate : {4000, 8000, 11025, 16000, 44100, 48000, 96000}) {
    const Sound in = At(rate, Speech(4.0 * rate / 48000));
    for (const int64_t lag : {0, 1, 7, rate / 3, rate * 99 / 100, -3, -rate / 5}) {
      const Match match = MatchOf(in, LaterBy(lag, in));
      EXPECT_TRUE(match.known) << rate << ' ' << lag;
      EXPECT_EQ(match.lag, lag) << rate;
      EXPECT_GT(match.correlation, 0.8) << rate << ' ' << lag;
    }
  }
}

TEST(Pairing, APlainDelayIsFoundAtALowerRate) {
  const Sound in = Speech(5);
  const auto lag = CoarseDelayOf(in, Louder(LaterBy(1001, in), -9));
  ASSERT_TRUE(lag);
  EXPECT_NEAR(static_cast<double>(*lag), 1001, 6);
}

// A pause in the middle leaves the other places to be looked at.
TEST(Pairing, APauseDoesNotHideAPlainDelay) {
  const Sound in = Cut(Speech(12), 3.5, 5);
  EXPECT_TRUE(CoarseDelayOf(in, LaterBy(1001, in)));
}

// At the lower rate nothing is said of what only the whole signals tell.
TEST(Pairing, WhatIsUpsideDownOrUnrelatedIsNotPlain) {
  const Sound in = Speech(5);
  EXPECT_FALSE(CoarseDelayOf(in, Inverted(LaterBy(1001, in))));
  EXPECT_FALSE(CoarseDelayOf(Noise(0.1, 5, 1), Noise(0.1, 5, 2)));
  const Match match = MatchOf(in, Inverted(LaterBy(1001, in)));
  EXPECT_EQ(match.lag, 1001);
  EXPECT_LT(match.correlation, -0.98);
  EXPECT_FALSE(MatchOf(Noise(0.1, 5, 1), Noise(0.1, 5, 2)).known);
}

// Half a period later a tone with overtones is all but upside down: no place of it is plain.
TEST(Pairing, OfAToneThatSwellsOnlyTheWholeTells) {
  Sound tone = Silence(3, 1, 16000);
  for (size_t i = 0; i < tone.samples.size(); ++i) {
    const double time = static_cast<double>(i) / 16000;
    double sum = 0;
    for (int partial = 1; partial <= 5; ++partial) {
      sum += std::sin(2 * M_PI * 150 * partial * time + partial) / partial;
    }
    tone.samples[i] = static_cast<float>((0.2 + 0.1 * std::sin(2 * M_PI * 4 * time)) * sum);
  }
  for (const int64_t lag : {0, 31, 400}) {
    EXPECT_LT(MatchOf(tone, Inverted(LaterBy(lag, tone))).correlation, -0.9) << lag;
    EXPECT_GT(MatchOf(tone, LaterBy(lag, tone)).correlation, 0.9) << lag;
  }
}

// For 6 s in the middle, where it is looked for first, it is another one.
TEST(Pairing, ADelayThatIsPlainInOnePlaceOnlyIsNotBelieved) {
  const Sound in = Speech(20);
  Sound out = LaterBy(4800, in);
  const Sound other = LaterBy(900, in);
  std::copy_n(other.samples.begin() + 336000, 288000, out.samples.begin() + 336000);
  ASSERT_NEAR(static_cast<double>(CoarseDelayOf(in, out).value_or(0)), 900, 6);
  EXPECT_EQ(MatchOf(in, out).lag, 4800);
}

TEST(Places, TheMiddleComesFirst) {
  EXPECT_EQ(FromTheMiddle({0, 10, 20, 30}), std::vector<int64_t>({20, 30, 10, 0}));
  EXPECT_EQ(FromTheMiddle({0, 10, 20}), std::vector<int64_t>({10, 20, 0}));
}

// Rates that have no factor in common meet once a second.
TEST(Track, IsSilentLongBeforeItsStart) {
  const std::vector<float> samples(8000, 0.5F);
  const Signal signal{.samples = samples, .rate = 8000, .channels = 1};
  const Track track(signal, 8001);
  std::vector<float> read(12000, 1.0F);
  track.Read(0, -9000, read);
  EXPECT_NEAR(read[0], 0, 1e-4);
  EXPECT_NEAR(read[8500], 0, 1e-4);
  EXPECT_NEAR(read[9500], 0.5, 1e-3);
}

TEST(Track, ReadsEachOfThreeChannels) {
  const std::vector<float> samples = {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F};
  const Signal signal{.samples = samples, .rate = 8000, .channels = 3};
  for (size_t channel = 0; channel < 3; ++channel) {
    std::vector<float> read(2);
    Track(signal, 8000).Read(static_cast<int>(channel), 0, read);
    EXPECT_EQ(read, std::vector<float>({samples[channel], samples[channel + 3]}));
  }
}

// So many frames later each frame of a noise is its own negative.
TEST(SelfInversion, IsLookedForUpTo8191FramesLater) {
  for (const int64_t later : {1, 300, 8191, 8384}) {
    std::minstd_rand random(1);
    std::vector<float> noise(static_cast<size_t>(later));
    for (float& sample : noise) sample = static_cast<float>(random() % 2) - 0.5F;
    const bool inverts = InvertsItself(200000, [&](int64_t first, std::span<float> to) {
      for (size_t i = 0; i < to.size(); ++i) {
        const int64_t at = first + static_cast<int64_t>(i);
        const float sample = noise[static_cast<size_t>(at % later)];
        to[i] = at / later % 2 == 0 ? sample : -sample;
      }
    });
    EXPECT_EQ(inverts, later <= 8191) << later;
  }
}

TEST(Track, ReadsTheSameInSmallPartsAsInLargeOnes) {
  const Sound sound = Music(3, 2, 44100);
  const Signal signal = sound.AsSignal();
  const Track track(signal, 48000);
  std::vector<float> whole(100000);
  track.Read(1, -500, whole);
  for (const size_t length : {100U, 1100U, 4000U}) {
    const Track small(signal, 48000);
    std::vector<float> part(length);
    for (size_t first = 0; first + length <= whole.size(); first += length - 30) {
      small.Read(1, static_cast<int64_t>(first) - 500, part);
      for (size_t i = 0; i < length; ++i) ASSERT_NEAR(part[i], whole[first + i], 1e-5) << first + i;
    }
    // Another channel is another sound.
    std::vector<float> other(length);
    small.Read(1, 1000, part);
    small.Read(0, 1000, other);
    EXPECT_NE(part, other);
  }
}

}  // namespace
}  // namespace host
