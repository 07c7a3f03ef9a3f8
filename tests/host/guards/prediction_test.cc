#include "guards/prediction.h"

#include <gtest/gtest.h>

#include <cmath>

#include "guards/treatments.h"

namespace host {
namespace {

// Noise through a resonance: each sample is 1.6 times the one before less 0.9 times the one before
// that, and something new.
std::vector<float> Resonance(size_t samples) {
  std::vector<float> sound = Noise(0.01, 1, 1).samples;
  sound.resize(samples);
  for (size_t i = 2; i < samples; ++i) sound[i] += 1.6F * sound[i - 1] - 0.9F * sound[i - 2];
  return sound;
}

double Rms(std::span<const float> samples) {
  double sum = 0;
  for (const float sample : samples)
    sum += static_cast<double>(sample) * static_cast<double>(sample);
  return std::sqrt(sum / static_cast<double>(samples.size()));
}

TEST(Prediction, LeavesWhatIsNew) {
  for (const size_t samples : {4000U, 4001U, 4002U, 4003U}) {
    const std::vector<float> sound = Resonance(samples);
    std::vector<float> errors(samples - Prediction::kOrder);
    Prediction(sound).Errors(sound, errors);
    EXPECT_GT(Rms(sound), 0.025) << samples;
    EXPECT_NEAR(Rms(errors), 0.01, 0.0006) << samples;
  }
}

// Each sample counts, wherever it stands: an alternating sound is foretold but for its start.
TEST(Prediction, OfFewSamplesTakesEachOfThem) {
  for (size_t samples = 9; samples < 30; ++samples) {
    std::vector<float> alternating(samples);
    for (size_t i = 0; i < samples; ++i) alternating[i] = i % 2 == 0 ? 0.5F : -0.5F;
    std::vector<float> errors(samples - Prediction::kOrder);
    Prediction(alternating).Errors(alternating, errors);
    for (const float error : errors) EXPECT_LT(std::fabs(error), 0.1F) << samples;
  }
}

TEST(Prediction, OfSilenceAndOfTooLittleIsZero) {
  const std::vector<float> sound = Resonance(20);
  std::vector<float> errors(sound.size() - Prediction::kOrder);
  for (const std::vector<float>& fitted : {std::vector<float>(), std::vector<float>(50)}) {
    Prediction(fitted).Errors(sound, errors);
    EXPECT_EQ(errors, std::vector<float>(sound.begin() + Prediction::kOrder, sound.end()));
  }
}

}  // namespace
}  // namespace host
