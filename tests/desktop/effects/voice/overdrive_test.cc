#include "desktop/effects/voice/overdrive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "desktop/dsp/sample_blocks.h"
#include "support/signals.h"
#include "support/tone.h"

namespace {

using Doubles = std::vector<double>;

constexpr int kRate = 16000;
constexpr double kTone = 500;

// Tones of 500 Hz, half a second each, at these amplitudes, driven.
Doubles Driven(double drive, std::initializer_list<double> amplitudes, int rate = kRate) {
  desktop::Overdrive overdrive(drive, rate);
  std::vector<float> samples;
  for (const double amplitude : amplitudes) {
    const Doubles tone = ToDoubles(Tone(kTone, amplitude * 32768, rate, rate / 2));
    samples.insert(samples.end(), tone.begin(), tone.end());
  }
  const auto block = static_cast<size_t>(rate / 100);
  for (size_t at = 0; at < samples.size(); at += block) {
    for (size_t part = 0; part < block; part += 160) {
      const size_t left = std::min(block, samples.size() - at) - part;
      overdrive.Process(&samples[at + part], std::min<size_t>(160, left));
    }
  }
  return Doubles(samples.begin(), samples.end());
}

double RoughnessAt(const Doubles& sound, size_t ms) {
  return Thd(std::span(sound).subspan(ms * kRate / 1000, kRate / 100), kTone, kRate);
}

// After a loud sound the roughness comes back as the level that was heard falls: a tenth of it in
// 115 ms. If it fell slowly, the ends of words would be clean.
TEST(Overdrive, TakesATenthOfASecondForEach20DecibelsToBeAsRoughAgain) {
  std::vector<double> took;
  for (const double quiet : {0.05, 0.005}) {
    const Doubles sound = Driven(12, {0.5, quiet});
    const double rough = RoughnessAt(sound, 450);
    EXPECT_GT(rough, 0.35);
    size_t back = 510;
    EXPECT_LT(RoughnessAt(sound, back), 0.7 * rough);
    while (RoughnessAt(sound, back) < 0.8 * rough) ++back;
    took.push_back(static_cast<double>(back));
  }
  EXPECT_NEAR(took[1] - took[0], 50 * std::log(10), 8);
}

// Between the waves of a low voice the level stays: what is heard is the shape of a saturated wave,
// whose flat top is the sharper the more it is driven, and no wave that swells within itself.
TEST(Overdrive, HoldsTheLevelBetweenTheWavesOfALowVoice) {
  desktop::Overdrive overdrive(12, kRate);
  std::vector<float> samples(kRate);
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<float>(0.5 * std::sin(2 * M_PI * 80 * static_cast<double>(i) / kRate));
  }
  for (size_t at = 0; at < samples.size(); at += 160) overdrive.Process(&samples[at], 160);
  // One wave lasts 200 samples; the flat parts lie around its quarters.
  for (size_t i = 0; i < 100; ++i) {
    if (i < 15 || i >= 85) continue;
    const float top = samples[8000 + overdrive.Latency() + i];
    EXPECT_NEAR(std::fabs(top), 0.5, 0.06) << i;
  }
}

// A loud sound may not come out louder for its first wave.
TEST(Overdrive, RisesAtOnce) {
  const Doubles sound = Driven(12, {0.005, 0.5});
  EXPECT_LT(Peak(sound), 0.65);
}

// The third harmonic of a hyperbolic tangent.
TEST(Overdrive, IsAsRoughAtEveryRateAndLevel) {
  Doubles wave(800);
  for (size_t i = 0; i < wave.size(); ++i) {
    wave[i] = std::tanh(3 * std::sin(2 * M_PI * static_cast<double>(i) / 80));
  }
  const double expected = AmplitudeAt(wave, 600, kRate) / AmplitudeAt(wave, 200, kRate);
  for (const int rate : {8000, 44100, 96000}) {
    for (const double level : {0.01, 0.9}) {
      const Doubles sound = Driven(3, {level}, rate);
      const std::span settled = std::span(sound).subspan(static_cast<size_t>(rate / 4));
      const double third = AmplitudeAt(settled, 3 * kTone, rate);
      EXPECT_NEAR(third / AmplitudeAt(settled, kTone, rate), expected, 0.01)
          << rate << " Hz, " << level;
    }
  }
}

// The longest block fills what the overdrive keeps to the last sample.
TEST(Overdrive, HearsNoDifferenceWhereItsInputIsCut) {
  for (const int rate : {8000, 96000}) {
    const Doubles noise = WhiteNoise(4 * desktop::kMaxEffectFrames, 0.5, 1);
    const std::vector<float> in(noise.begin(), noise.end());
    std::vector<float> whole = in;
    desktop::Overdrive overdrive(3, rate);
    for (size_t at = 0; at < whole.size(); at += desktop::kMaxEffectFrames) {
      overdrive.Process(&whole[at], desktop::kMaxEffectFrames);
    }
    std::vector<float> cut = in;
    desktop::Overdrive other(3, rate);
    for (float& sample : cut) other.Process(&sample, 1);
    EXPECT_EQ(whole, cut) << rate;
  }
}

// What is too quiet to be shaped comes out as it went in, but for the filters, which are even.
TEST(Overdrive, IsAsLateAsItSays) {
  for (const int rate : {16000, 96000}) {
    desktop::Overdrive overdrive(3, rate);
    std::vector<float> samples(desktop::kMaxEffectFrames);
    constexpr float kQuiet = 5e-7F;
    samples[0] = kQuiet;
    overdrive.Process(samples.data(), samples.size());
    const size_t late = overdrive.Latency();
    EXPECT_NEAR(samples[late], 0.96 * kQuiet, 0.05e-7) << rate;
    for (size_t i = 1; i <= 20; ++i) {
      EXPECT_NEAR(samples[late - i], samples[late + i], 1e-9) << rate << " Hz, " << i;
    }
  }
}

}  // namespace
