#include "audio_measures/interpolation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace audio_measures {
namespace {

// The largest error, in dB of the crest, of a cosine of `frequency` times the rate, at places from
// 200 on.
double Error(double frequency, double first, double step) {
  std::vector<float> cosine(4096);
  for (size_t i = 0; i < cosine.size(); ++i) {
    cosine[i] = static_cast<float>(std::cos(2 * M_PI * frequency * static_cast<double>(i) + 1));
  }
  const std::vector<float> values = Interpolate(cosine, 200 + first, step, 3000);
  double largest = 1e-12;
  for (size_t i = 0; i < values.size(); ++i) {
    const double place = 200 + first + step * static_cast<double>(i);
    const double wanted = std::cos(2 * M_PI * frequency * place + 1);
    largest = std::max(largest, std::fabs(wanted - static_cast<double>(values[i])));
  }
  return 20 * std::log10(largest);
}

TEST(Interpolate, KnowsACosineBetweenItsSamples) {
  for (const double frequency : {0.001, 0.1, 0.3, 0.46}) {
    for (const double first : {0.5, 0.25, -0.999, 0.001}) {
      EXPECT_LT(Error(frequency, first, 1), -90) << frequency << ' ' << first;
    }
    EXPECT_LT(Error(frequency, 0.3, 1.00005), -85) << frequency;
    EXPECT_LT(Error(frequency, 0.3, 0.999), -85) << frequency;
  }
}

TEST(Interpolate, GivesTheSamplesThemselvesAndSilenceBeyondThem) {
  const std::vector<float> samples(300, 0.5F);
  const std::vector<float> values = Interpolate(samples, -100, 1, 500);
  EXPECT_EQ(values[0], 0);
  EXPECT_EQ(values[99], 0);
  EXPECT_EQ(values[100], 0.5F);
  EXPECT_EQ(values[399], 0.5F);
  EXPECT_EQ(values[400], 0);
  EXPECT_EQ(values[499], 0);
}

}  // namespace
}  // namespace audio_measures
