#include "desktop/dsp/music/onset_envelope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr int kRate = 16000;

// Bursts of noise of 50 ms at these seconds, each with its peak.
struct Burst {
  double second;
  double peak;
};

Doubles Bursts(std::initializer_list<Burst> bursts, double seconds) {
  Doubles samples(static_cast<size_t>(seconds * kRate));
  const Doubles noise = WhiteNoise(kRate / 20, 1, 1);
  for (const Burst& burst : bursts) {
    const auto first = static_cast<size_t>(burst.second * kRate);
    for (size_t i = 0; i < noise.size(); ++i) samples[first + i] = burst.peak * noise[i];
  }
  return samples;
}

struct Onsets {
  double step;
  std::vector<float> values;
  std::vector<float> weights;

  // The highest within a tenth of a second after a time.
  float ValueAt(double second) const { return HighestOf(values, second); }
  float WeightAt(double second) const { return HighestOf(weights, second); }

  float HighestOf(const std::vector<float>& all, double second) const {
    const auto first = all.begin() + std::lround(second / step);
    return *std::max_element(first, first + std::lround(0.1 / step));
  }
};

Onsets Heard(const Doubles& sound) {
  desktop::OnsetEnvelope envelope(kRate, 1);
  Onsets onsets{envelope.Step(), {}, {}};
  for (const short sample : ToShorts(sound)) {
    if (!envelope.Put(&sample)) continue;
    onsets.values.push_back(envelope.Value());
    onsets.weights.push_back(envelope.Weight());
  }
  return onsets;
}

// A quiet passage is heard again the sooner the faster the loud one before is forgotten: its
// amplitude counts e times as much 16 s later, its power every 8 s.
TEST(OnsetEnvelope, ForgetsALoudPassageOverSeconds) {
  const Onsets onsets = Heard(Bursts({{1, 0.9}, {4, 0.03}, {12, 0.03}, {20, 0.03}}, 21));
  EXPECT_GT(onsets.WeightAt(1), 10 * onsets.WeightAt(4));
  EXPECT_NEAR(onsets.WeightAt(12) / onsets.WeightAt(4), std::exp(0.5), 0.05);
  EXPECT_NEAR(onsets.WeightAt(20) / onsets.WeightAt(4), std::exp(1.0), 0.1);
}

// Whatever is louder than all before is heard in full at once.
TEST(OnsetEnvelope, HearsNoLevelButThatOfTheLoudest) {
  const Onsets loud = Heard(Bursts({{1, 0.9}, {2, 0.09}}, 3));
  const Onsets quiet = Heard(Bursts({{1, 0.09}, {2, 0.009}}, 3));
  for (const double second : {1.0, 2.0}) {
    EXPECT_NEAR(quiet.ValueAt(second), loud.ValueAt(second), 0.01 * loud.ValueAt(second));
    EXPECT_NEAR(quiet.WeightAt(second), loud.WeightAt(second), 0.03 * loud.WeightAt(second));
  }
}

TEST(OnsetEnvelope, HearsOnlyBeginnings) {
  Doubles sound = Bursts({}, 4);
  const Doubles noise = WhiteNoise(2 * kRate, 0.3, 2);
  std::copy(noise.begin(), noise.end(), sound.begin() + kRate);
  const Onsets onsets = Heard(sound);
  EXPECT_EQ(onsets.ValueAt(0.5), 0);
  EXPECT_EQ(onsets.WeightAt(0.5), 0);
  EXPECT_GT(onsets.ValueAt(1), 5 * onsets.ValueAt(2));
  EXPECT_GT(onsets.WeightAt(1), 3 * onsets.WeightAt(2));
  EXPECT_EQ(onsets.ValueAt(3.2), 0);
}

}  // namespace
