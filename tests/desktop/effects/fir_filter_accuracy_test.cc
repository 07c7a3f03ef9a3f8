#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"
#include "support/vector_targets.h"

namespace {

using FirFilterAccuracy = VectorTargetTest;

// Noise of 16 bits through both ears' responses to a sound from the right, as loud as the outputs
// may be. The right ear is the hard one: its response has few, large coefficients of both signs.
class LoudEar {
 public:
  LoudEar(bool right, unsigned seed) {
    int azimuth = 90;
    int elevation = 0;
    short ears[2][8192];
    const unsigned taps = mit_hrtf_get(&azimuth, &elevation, 44100, 0, ears[0], ears[1]);
    for (unsigned i = 0; i < taps; ++i)
      m_taps.push_back(static_cast<float>(ears[right][i]) / 32768);

    std::mt19937 random(seed);
    std::uniform_int_distribution<int> uniform(-32768, 32767);
    std::vector<int> noise(kSamples);
    for (int& sample : noise) sample = uniform(random);
    for (const int sample : noise) m_in.push_back(static_cast<float>(sample) / 32768);
    const float peak = static_cast<float>(Peak());
    for (size_t i = 0; i < kSamples; ++i) {
      m_in[i] = std::round(static_cast<float>(noise[i]) / std::max(peak, 1.0F)) / 32768;
    }
  }

  // The largest error against double precision.
  double Error() const {
    const std::unique_ptr<zuwebrtc::FIRFilter> filter(
        zuwebrtc::FIRFilter::Create(m_taps.data(), m_taps.size(), kCall));
    std::vector<float> out(kSamples);
    for (size_t at = 0; at < kSamples; at += kCall) {
      filter->Filter(&m_in[at], std::min(kCall, kSamples - at), &out[at]);
    }
    double largest = 0;
    for (size_t n = 0; n < kSamples; ++n) {
      largest = std::max(largest, std::abs(double{out[n]} - Exact(n)));
    }
    return largest;
  }

  double Peak() const {
    double peak = 0;
    for (size_t n = 0; n < kSamples; ++n) peak = std::max(peak, std::abs(Exact(n)));
    return peak;
  }

 private:
  static constexpr size_t kSamples = 20000;
  static constexpr size_t kCall = 441;

  double Exact(size_t n) const {
    double sum = 0;
    for (size_t k = 0; k < std::min(m_taps.size(), n + 1); ++k) {
      sum += double{m_taps[k]} * double{m_in[n - k]};
    }
    return sum;
  }

  std::vector<float> m_taps;
  std::vector<float> m_in;
};

TEST_P(FirFilterAccuracy, HoldsTwoTenMillionthsOfFullScaleWhereTheOutputReachesIt) {
  for (const bool right : {false, true}) {
    for (const unsigned seed : {1U, 2U}) {
      const LoudEar ear(right, seed);
      ASSERT_NEAR(ear.Peak(), right ? 1 : 0.9, 0.15);
      EXPECT_LT(ear.Error(), 2e-7) << (right ? "right" : "left") << " ear, seed " << seed;
    }
  }
}

TEST_P(FirFilterAccuracy, IsSilentThroughASilentResponse) {
  const std::vector<float> taps(512);
  const std::unique_ptr<zuwebrtc::FIRFilter> filter(
      zuwebrtc::FIRFilter::Create(taps.data(), taps.size(), 600));
  const std::vector<float> in(600, 0.5F);
  std::vector<float> out(in.size(), 99.0F);
  filter->Filter(in.data(), in.size(), out.data());
  EXPECT_EQ(out, std::vector<float>(in.size()));
}

INSTANTIATE_TEST_SUITE_P(, FirFilterAccuracy, EveryVectorTarget(), VectorTargetName);

}  // namespace
