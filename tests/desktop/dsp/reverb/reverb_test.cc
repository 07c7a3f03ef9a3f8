#include "desktop/dsp/reverb/reverb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "desktop/dsp/filters/denormal_guard.h"
#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr NreverbFv3Parameter kVoice = {3.6f, -17.7f, 3, 0.8f, 0.6f, 0, 0.2f, 2.1f, 0.6f, 16};
constexpr NreverbFv3Parameter kMixer = {3.6f, -27.05f, 4.53f, 0.8f,  0.6f,
                                        0,    0.2f,    2.02f, 0.56f, 100.84f};
constexpr int kRates[] = {8000, 16000, 22050, 44100, 48000};

// What comes out of a reverberation for one sound in all channels.
std::vector<Doubles> Processed(const NreverbFv3Parameter& parameter, const std::vector<Doubles>& in,
                               int rate) {
  desktop::Reverb reverb;
  reverb.SetParameter(parameter);
  reverb.SetEnabled(true);
  std::vector<std::vector<float>> rows;
  for (const Doubles& channel : in) rows.emplace_back(channel.begin(), channel.end());
  float* const pointers[] = {rows.front().data(), rows.back().data()};
  const desktop::DenormalGuard guard;
  reverb.Process(pointers, static_cast<int>(in.size()), in[0].size(), rate);
  std::vector<Doubles> out;
  for (const auto& row : rows) out.emplace_back(row.begin(), row.end());
  return out;
}

// The tail alone that follows an impulse, in the first channel.
Doubles Tail(NreverbFv3Parameter parameter, int rate, int channels = 2) {
  parameter.Dry = -100;
  Doubles impulse(static_cast<size_t>(rate * 4));
  impulse[0] = 1;
  return Processed(parameter, std::vector<Doubles>(static_cast<size_t>(channels), impulse),
                   rate)[0];
}

// Seconds for 60 dB, from the line through the decay (Schroeder's backward integral) from 60 ms on,
// 5 to 25 dB below where it starts.
double ReverbTime(const Doubles& tail, double centre, int rate) {
  const Doubles band = OctaveBand(tail, centre, rate);
  Doubles energy(band.size());
  double sum = 0;
  for (size_t i = band.size(); i-- > 0;) energy[i] = sum += band[i] * band[i];
  const auto start = static_cast<size_t>(rate * 60 / 1000);
  double n = 0, t = 0, y = 0, tt = 0, ty = 0;
  for (size_t i = start; i < energy.size(); ++i) {
    const double level = 10 * std::log10(energy[i] / energy[start]);
    if (level > -5 || level < -25) continue;
    const double time = static_cast<double>(i) / rate;
    n += 1, t += time, y += level, tt += time * time, ty += time * level;
  }
  return -60 * (n * tt - t * t) / (n * ty - t * y);
}

// Share of the samples beyond one standard deviation against that of Gaussian noise, mean over
// windows of 20 ms (Abel and Huang, A simple, robust measure of reverberation echo density, 2006).
double EchoDensity(const Doubles& tail, int rate, double from, double to) {
  const auto window = static_cast<size_t>(rate / 50);
  double sum = 0;
  int windows = 0;
  for (auto at = static_cast<size_t>(from * rate); at + window <= static_cast<size_t>(to * rate);
       at += window / 2, ++windows) {
    const std::span<const double> block(tail.data() + at, window);
    const double sigma = Rms(block);
    const auto beyond = std::count_if(block.begin(), block.end(),
                                      [&](double value) { return std::abs(value) > sigma; });
    sum += static_cast<double>(beyond) / static_cast<double>(window) / 0.3173;
  }
  return sum / windows;
}

// The largest autocorrelation of the tail, its decay undone, for lags of 5 to 100 ms.
double Flutter(const Doubles& tail, double time, int rate) {
  Doubles even;
  for (int i = rate / 10; i < rate; ++i) {
    even.push_back(tail[static_cast<size_t>(i)] * std::pow(10.0, 3.0 * i / rate / time));
  }
  double energy = 0;
  for (const double value : even) energy += value * value;
  double largest = 0;
  for (auto lag = static_cast<size_t>(rate / 200); lag <= static_cast<size_t>(rate / 10); ++lag) {
    double sum = 0;
    for (size_t i = lag; i < even.size(); ++i) sum += even[i] * even[i - lag];
    largest = std::max(largest, std::abs(sum) / energy);
  }
  return largest;
}

TEST(Reverb, DecaysInItsReverbTime) {
  for (const int rate : kRates) {
    for (const NreverbFv3Parameter& parameter : {kVoice, kMixer}) {
      for (const double octave : {500.0, 1000.0}) {
        const double time = ReverbTime(Tail(parameter, rate), octave, rate);
        EXPECT_NEAR(time / static_cast<double>(parameter.ReverbTime), 1, 0.07)
            << octave << " Hz at " << rate;
      }
    }
  }
}

TEST(Reverb, DecaysInOtherReverbTimes) {
  for (const float time : {0.4f, 1.0f, 4.0f}) {
    NreverbFv3Parameter parameter = kVoice;
    parameter.ReverbTime = time;
    parameter.Factor = 1.5f;
    EXPECT_NEAR(ReverbTime(Tail(parameter, 44100), 1000, 44100) / static_cast<double>(time), 1,
                0.1);
  }
}

TEST(Reverb, IsDenseAndDoesNotFlutter) {
  for (const int rate : kRates) {
    for (const NreverbFv3Parameter& parameter : {kVoice, kMixer}) {
      const Doubles tail = Tail(parameter, rate);
      EXPECT_GT(EchoDensity(tail, rate, 0.15, 0.3), 0.7) << rate;
      EXPECT_LT(Flutter(tail, 2.1, rate), 0.5) << rate;
    }
  }
}

// `Wet` less `Dry` is the level of the tail of steady noise against the sound itself.
TEST(Reverb, HasItsTailAtItsLevel) {
  for (const int rate : kRates) {
    for (const int channels : {1, 2}) {
      for (const bool alike : {false, true}) {
        NreverbFv3Parameter parameter = kVoice;
        std::vector<Doubles> noise;
        for (int c = 0; c < channels; ++c) {
          noise.push_back(WhiteNoise(rate * 6, 0.5, alike ? 1 : 1 + static_cast<unsigned>(c)));
        }
        parameter.Dry = -100;
        const std::vector<Doubles> tail = Processed(parameter, noise, rate);
        for (int c = 0; c < channels; ++c) {
          const Doubles steady(tail[static_cast<size_t>(c)].begin() + rate * 3,
                               tail[static_cast<size_t>(c)].end());
          EXPECT_NEAR(Decibels(Rms(steady) / Rms(noise[static_cast<size_t>(c)])), -17.7, 1)
              << rate << " Hz, " << channels << " channels, alike " << alike;
        }
      }
    }
  }
}

TEST(Reverb, LeavesTheSoundItselfAtItsGain) {
  NreverbFv3Parameter parameter = kVoice;
  parameter.Wet = -100;
  const Doubles noise = WhiteNoise(4410, 0.5, 1);
  const Doubles out = Processed(parameter, {noise}, 44100)[0];
  for (size_t i = 0; i < noise.size(); ++i) ASSERT_NEAR(out[i], noise[i] * 1.41254, 1e-4);
}

TEST(Reverb, StartsItsTailAfterTheDelay) {
  for (const NreverbFv3Parameter& parameter : {kVoice, kMixer}) {
    const Doubles tail = Tail(parameter, 44100);
    const auto first =
        std::find_if(tail.begin(), tail.end(), [](double value) { return std::abs(value) > 1e-4; });
    EXPECT_NEAR(static_cast<double>(first - tail.begin()) / 44.1,
                static_cast<double>(parameter.Delay), 0.5);
  }
}

double Correlation(const Doubles& a, const Doubles& b) {
  double ab = 0;
  for (size_t i = 0; i < a.size(); ++i) ab += a[i] * b[i];
  return ab / (Rms(a) * Rms(b) * static_cast<double>(a.size()));
}

TEST(Reverb, IsAsWideAsItsWidth) {
  NreverbFv3Parameter parameter = kVoice;
  parameter.Dry = -100;
  const Doubles noise = WhiteNoise(44100 * 4, 0.5, 1);
  std::vector<double> correlations;
  for (const float width : {0.0f, 0.5f, 1.0f}) {
    parameter.Width = width;
    const auto out = Processed(parameter, {noise, noise}, 44100);
    correlations.push_back(Correlation(out[0], out[1]));
  }
  EXPECT_NEAR(correlations[0], 1, 1e-6);
  EXPECT_NEAR(correlations[1], 0.6, 0.15);  // (1 - w^2) / (1 + w^2).
  EXPECT_NEAR(correlations[2], 0, 0.15);
}

TEST(Reverb, DampsHighsAndLows) {
  NreverbFv3Parameter parameter = kVoice;
  parameter.Damp1 = 0;
  parameter.Damp3 = 0;
  const double open = ReverbTime(Tail(parameter, 44100), 8000, 44100);
  EXPECT_NEAR(open, 2.1, 0.2);
  parameter.Damp1 = 1;
  EXPECT_LT(ReverbTime(Tail(parameter, 44100), 8000, 44100), open / 2);
  EXPECT_NEAR(ReverbTime(Tail(parameter, 44100), 63, 44100), 2.1, 0.25);
  parameter.Damp1 = 0;
  parameter.Damp2 = 1;
  EXPECT_LT(ReverbTime(Tail(parameter, 44100), 63, 44100), open / 2);
}

double HighShare(const Doubles& tail) {
  return Rms(HighPassed(tail, 8000, 44100)) / Rms(OctaveBand(tail, 500, 44100));
}

TEST(Reverb, DullsTheWholeTail) {
  NreverbFv3Parameter parameter = kVoice;
  parameter.Damp1 = parameter.Damp3 = 0;
  const double open = HighShare(Tail(parameter, 44100));
  parameter.Damp3 = 1;
  EXPECT_LT(Decibels(HighShare(Tail(parameter, 44100)) / open), -5);
}

TEST(Reverb, GrowsWithItsFactor) {
  for (const float factor : {0.5f, 1.0f, 3.6f, 5.0f}) {
    NreverbFv3Parameter parameter = kVoice;
    parameter.Factor = factor;
    const desktop::ReverbDesign design = desktop::DesignReverb(parameter, 44100);
    EXPECT_NEAR(design.lines.front().delay / 44.1, 9 * static_cast<double>(factor), 0.5);
    EXPECT_NEAR(design.lines.back().delay / 44.1, 23 * static_cast<double>(factor), 0.5);
  }
}

TEST(Reverb, SmearsItsEchoesWithItsFeedback) {
  NreverbFv3Parameter parameter = kVoice;
  parameter.Delay = 0;
  parameter.Feedback = 0;
  const double sharp = EchoDensity(Tail(parameter, 44100), 44100, 0.02, 0.08);
  parameter.Feedback = 1;
  EXPECT_GT(EchoDensity(Tail(parameter, 44100), 44100, 0.02, 0.08), sharp + 0.1);
}

TEST(Reverb, StaysFiniteAtTheLimitsOfItsParameters) {
  const float inf = std::numeric_limits<float>::infinity();
  const float nan = std::nanf("");
  const NreverbFv3Parameter cases[] = {{inf, inf, inf, inf, inf, inf, inf, inf, inf, inf},
                                       {-inf, -inf, -inf, -inf, -inf, -inf, -inf, -inf, -inf, -inf},
                                       {nan, nan, nan, nan, nan, nan, nan, nan, nan, nan},
                                       {5, 20, 20, 1, 1, 1, 1, 20, 1, 500},
                                       {0.5f, 20, 20, 0, 0, 0, 0, 20, 0, 0},
                                       {0.5f, 20, 20, 1, 1, 1, 0, 0.1f, 0, 0}};
  for (const NreverbFv3Parameter& parameter : cases) {
    for (const int rate : {8000, 192000}) {
      const Doubles noise = WhiteNoise(rate * 2, 1, 1);
      const Doubles out = Processed(parameter, {noise, noise}, rate)[1];
      ASSERT_TRUE(
          std::all_of(out.begin(), out.end(), [](double value) { return std::abs(value) < 2000; }));
    }
  }
}

}  // namespace
