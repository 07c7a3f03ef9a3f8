#include "audio_measures/delay_finder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

namespace audio_measures {
namespace {

constexpr size_t kSize = 4096;  // The shortest transform.
constexpr int64_t kStrongLag = 3;
constexpr int64_t kWeakLag = 40;

// The lag between a flat spectrum and one of which this share of the bins is later by kStrongLag,
// and all others, a thousandth of the mean, by kWeakLag.
int64_t LagOf(double share) {
  const RealFft fft(kSize);
  const size_t last = fft.Bins() - 1;
  const auto strong = static_cast<size_t>(share * static_cast<double>(last));
  std::vector<std::complex<float>> bins(fft.Bins());
  for (size_t i = 1; i < last; ++i) {
    const double angle = 2 * M_PI * static_cast<double>(i) / static_cast<double>(kSize);
    const double later = i <= strong ? kStrongLag : kWeakLag;
    bins[i] = std::polar(i <= strong ? 1.0 : 0.001 * share, -angle * later);
  }
  std::vector<float> signal(kSize);
  fft.Inverse(bins, signal);

  DelayFinder finder(0, 63, kSize);
  EXPECT_EQ(finder.SignalFrames(), kSize);
  std::vector<float> reference(finder.ReferenceFrames());
  reference.front() = 1;
  finder.Add(reference, signal);
  const auto peak = finder.Find();
  return peak ? peak->lag : -1;
}

// A peak is as high as all bins together count: half of 70 % is more than 30 %, and half of 63 % is
// less than 37 %.
TEST(DelayFinder, CountsBinsAThousandthOfTheMeanHalf) {
  EXPECT_EQ(LagOf(0.30), kWeakLag);
  EXPECT_EQ(LagOf(0.37), kStrongLag);
}

TEST(DelayFinder, TellsThePolarityOfAPeak) {
  for (const float sign : {1.0F, -1.0F}) {
    DelayFinder finder(0, 63, kSize);
    std::vector<float> reference(finder.ReferenceFrames());
    std::vector<float> signal(kSize);
    reference[0] = 1;
    signal[5] = sign;
    finder.Add(reference, signal);
    const auto peak = finder.Find();
    ASSERT_TRUE(peak);
    EXPECT_EQ(peak->lag, 5);
    EXPECT_EQ(peak->polarity, static_cast<int>(sign));
  }
}

}  // namespace
}  // namespace audio_measures
