#include "audio_measures/loudness.h"

#include <ebur128.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 48000;

// Sines of 1 kHz one after the other, each of `levels` in dBFS of its crest, one per channel.
struct Tone {
  double seconds;
  std::vector<double> levels;
};

Loudness Of(const std::vector<Tone>& tones) {
  Loudness loudness(static_cast<int>(tones.front().levels.size()), kRate);
  size_t place = 0;
  for (const Tone& tone : tones) {
    std::vector<float> frames;
    for (const size_t end = place + static_cast<size_t>(tone.seconds * kRate); place < end;
         ++place) {
      const double sine = std::sin(2 * M_PI * 1000 * static_cast<double>(place % kRate) / kRate);
      for (const double level : tone.levels) {
        frames.push_back(static_cast<float>(std::pow(10, level / 20) * sine));
      }
    }
    loudness.Add(frames);
  }
  return loudness;
}

Tone Stereo(double seconds, double level) { return {seconds, {level, level}}; }

double Integrated(const std::vector<Tone>& tones) { return *Of(tones).Integrated().value; }
double Range(const std::vector<Tone>& tones) { return *Of(tones).Range().value; }

// EBU Tech 3341, table 1, cases 1 to 6, whose tolerance is 0.1 LU.
TEST(Loudness, OfTheCasesOfTech3341) {
  EXPECT_NEAR(Integrated({Stereo(20, -23)}), -23, 0.1);
  EXPECT_NEAR(Integrated({Stereo(20, -33)}), -33, 0.1);
  EXPECT_NEAR(Integrated({Stereo(10, -36), Stereo(60, -23), Stereo(10, -36)}), -23, 0.1);
  EXPECT_NEAR(Integrated({Stereo(10, -72), Stereo(10, -36), Stereo(60, -23), Stereo(10, -36),
                          Stereo(10, -72)}),
              -23, 0.1);
  EXPECT_NEAR(Integrated({Stereo(20, -26), Stereo(20.1, -20), Stereo(20, -26)}), -23, 0.1);
  EXPECT_NEAR(Integrated({{20, {-28, -28, -24, -30, -30}}}), -23, 0.1);
}

// EBU Tech 3342, cases 1 to 4, whose tolerance is 1 LU.
TEST(Loudness, RangeOfTheCasesOfTech3342) {
  EXPECT_NEAR(Range({Stereo(20, -20), Stereo(20, -30)}), 10, 1);
  EXPECT_NEAR(Range({Stereo(20, -20), Stereo(20, -15)}), 5, 1);
  EXPECT_NEAR(Range({Stereo(20, -40), Stereo(20, -20)}), 20, 1);
  EXPECT_NEAR(
      Range({Stereo(20, -50), Stereo(20, -35), Stereo(20, -20), Stereo(20, -35), Stereo(20, -50)}),
      15, 1);
}

TEST(Loudness, OfOneChannelIsNotThatOfTwo) {
  EXPECT_NEAR(Integrated({{20, {-23}}}), -23 - 3.01, 0.1);
}

// Loudness and its range as libebur128 has them.
struct Opinion {
  double integrated = 0;
  double range = 0;
};
Opinion Elsewhere(const std::vector<float>& frames, int channels, int rate) {
  const auto count = static_cast<unsigned>(channels);
  ebur128_state* meter =
      ebur128_init(count, static_cast<unsigned long>(rate), EBUR128_MODE_I | EBUR128_MODE_LRA);
  ebur128_add_frames_float(meter, frames.data(), frames.size() / count);
  Opinion opinion;
  ebur128_loudness_global(meter, &opinion.integrated);
  ebur128_loudness_range(meter, &opinion.range);
  ebur128_destroy(&meter);
  return opinion;
}

// Noise that swells and fades in each channel at another pace, down to digital silence, brighter
// and darker.
std::vector<float> Swells(int channels, int rate, double seconds) {
  const auto count = static_cast<size_t>(channels);
  std::vector<float> frames = Noise(static_cast<size_t>(seconds * rate) * count, 0.2, 1);
  for (size_t i = 0; i < frames.size(); ++i) {
    const size_t frame = i / count;
    const double time = static_cast<double>(frame) / rate;
    const double swell = std::sin(0.7 * time + static_cast<double>(i % count));
    frames[i] *= static_cast<float>(swell > -0.9 ? std::pow(10, 2 * swell - 1.5) : 0);
    if (i >= count && swell > 0) frames[i] += 0.9F * frames[i - count];
  }
  return frames;
}

TEST(Loudness, OfSwellingNoiseIsThatOfAnotherMeter) {
  for (const int rate : {8000, 11025, 22050, 44100, 48000, 96000, 192000}) {
    const std::vector<float> frames = Swells(2, rate, 40);
    const Opinion opinion = Elsewhere(frames, 2, rate);
    Loudness loudness(2, rate);
    const std::span<const float> all = frames;
    for (size_t i = 0; i < all.size(); i += 14002) {
      loudness.Add(all.subspan(i, std::min<size_t>(14002, all.size() - i)));
    }
    EXPECT_NEAR(*loudness.Integrated().value, opinion.integrated, 1e-7) << rate;
    EXPECT_NEAR(*loudness.Range().value, opinion.range, 1e-7) << rate;
  }
}

TEST(Loudness, OfManyChannelsIsThatOfAnotherMeter) {
  for (const int channels : {1, 2, 3, 4, 5, 6, 7, 8, 64}) {
    const std::vector<float> frames = Swells(channels, 16000, 10);
    const Opinion opinion = Elsewhere(frames, channels, 16000);
    Loudness loudness(channels, 16000);
    loudness.Add(frames);
    EXPECT_NEAR(*loudness.Integrated().value, opinion.integrated, 1e-7) << channels;
    EXPECT_NEAR(*loudness.Range().value, opinion.range, 1e-7) << channels;
  }
}

std::string Reason(const Figure& figure) { return figure.value ? "a value" : figure.reason; }

TEST(Loudness, WhatCannotBeComputedSaysWhy) {
  EXPECT_EQ(Reason(Loudness(2, kRate).Integrated()), kNoSamples);
  EXPECT_EQ(Reason(Loudness(0, kRate).Integrated()),
            "a rate or channel count that is out of range");
  EXPECT_EQ(Reason(Of({Stereo(0.39, -20)}).Integrated()), kTooShort);
  EXPECT_EQ(Reason(Of({Stereo(0.4, -20)}).Integrated()), "a value");
  EXPECT_EQ(Reason(Of({Stereo(2.9, -20)}).Range()), kTooShort);
  EXPECT_EQ(Reason(Of({Stereo(3, -20)}).Range()), "a value");
  EXPECT_EQ(Reason(Of({Stereo(5, -80)}).Integrated()), kBelowGate);
  EXPECT_EQ(Reason(Of({Stereo(5, -80)}).Range()), kBelowGate);
  Loudness broken(1, kRate);
  std::vector<float> samples(kRate, 0.1F);
  samples[100] = std::numeric_limits<float>::infinity();
  broken.Add(samples);
  EXPECT_EQ(Reason(broken.Integrated()), kNotFinite);
  EXPECT_EQ(Reason(broken.Range()), kNotFinite);
}

}  // namespace
}  // namespace audio_measures
