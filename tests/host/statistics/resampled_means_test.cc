#include "statistics/resampled_means.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "statistics/normal.h"
#include "statistics/random.h"

namespace statistics {
namespace {

constexpr int kResamples = 10000;

std::vector<Cluster> Single(const std::vector<double>& values) {
  std::vector<Cluster> clusters;
  for (const double value : values) clusters.push_back({value, 1});
  return clusters;
}

std::vector<Cluster> NormalValues(int count, uint64_t seed) {
  Random random(seed);
  std::vector<Cluster> clusters;
  for (int i = 0; i < count; ++i) clusters.push_back({NormalQuantile(random.Uniform()), 1});
  return clusters;
}

TEST(ResampledMeans, AreTheSameEachTime) {
  const auto clusters = NormalValues(30, 3);
  const Interval one = ResampledMeans(clusters, kResamples).At(0.95);
  const Interval two = ResampledMeans(clusters, kResamples).At(0.95);
  EXPECT_EQ(one.low, two.low);
  EXPECT_EQ(one.high, two.high);
}

// Of many even values the interval is close to the normal one.
TEST(ResampledMeans, OfManyEvenValuesIsNormal) {
  const auto clusters = NormalValues(900, 4);
  const Interval found = ResampledMeans(clusters, kResamples).At(0.95);
  const double mean = MeanOf(clusters);
  EXPECT_NEAR(found.low, mean - 1.96 / 30, 0.005);
  EXPECT_NEAR(found.high, mean + 1.96 / 30, 0.005);
}

// The acceleration moves both ends to the side of the long tail.
TEST(ResampledMeans, OfSkewedValuesReachesFurtherToTheLongTail) {
  std::vector<double> values;
  for (int i = 1; i < 40; ++i) values.push_back(-std::log(i / 40.0));
  const auto clusters = Single(values);
  const Interval found = ResampledMeans(clusters, kResamples).At(0.95);
  const double mean = MeanOf(clusters);
  EXPECT_GT((found.high - mean) / (mean - found.low), 1.2);
}

// The ends by the book (Efron, "Better bootstrap confidence intervals", 1987), with resamples of
// another generator: bias from the share below the mean, acceleration from the jackknife.
TEST(ResampledMeans, HaveTheEndsOfTheBook) {
  const std::vector<double> values = {0.1, 0.2, 0.3, 0.5, 0.6, 0.9, 1.1, 1.5, 2.4, 3.7, 5.0, 9.0};
  constexpr int kMany = 300000;
  std::mt19937 random(7);
  std::uniform_int_distribution<size_t> choose(0, values.size() - 1);
  std::vector<double> means(kMany);
  for (double& mean : means) {
    for (size_t i = 0; i < values.size(); ++i) mean += values[choose(random)] / 12;
  }
  std::sort(means.begin(), means.end());
  const double all = std::accumulate(values.begin(), values.end(), 0.0);
  const auto below =
      std::count_if(means.begin(), means.end(), [&](double mean) { return mean < all / 12; });
  const double bias = NormalQuantile(static_cast<double>(below) / kMany);
  double squares = 0;
  double cubes = 0;
  for (const double value : values) {
    const double off = all / 12 - (all - value) / 11;
    squares += off * off;
    cubes += off * off * off;
  }
  const double acceleration = cubes / 6 / std::pow(squares, 1.5);
  const auto end = [&](double share) {
    const double z = bias + NormalQuantile(share);
    return means[static_cast<size_t>(kMany * NormalShare(bias + z / (1 - acceleration * z)))];
  };
  const Interval found = ResampledMeans(Single(values), kMany).At(0.95);
  const double width = end(0.975) - end(0.025);
  EXPECT_NEAR(found.low, end(0.025), 0.012 * width);
  EXPECT_NEAR(found.high, end(0.975), 0.012 * width);
}

// Each cluster has ten equal values, so that there are ten times as many values and no more facts.
TEST(ResampledMeans, DrawWholeClusters) {
  auto clusters = NormalValues(20, 5);
  const Interval single = ResampledMeans(clusters, kResamples).At(0.95);
  for (Cluster& each : clusters) each = {10 * each.sum, 10};
  const Interval tenfold = ResampledMeans(clusters, kResamples).At(0.95);
  EXPECT_NEAR(single.low, tenfold.low, 1e-9);
  EXPECT_NEAR(single.high, tenfold.high, 1e-9);
}

// What touches an end of the 95 % interval is beyond it at the level of 2.5 % on that side.
TEST(ResampledMeans, LevelsAreThoseOfTheEnds) {
  const auto clusters = NormalValues(40, 6);
  const ResampledMeans means(clusters, 100000);
  for (const double confidence : {0.8, 0.95, 0.99}) {
    const Interval found = means.At(confidence);
    const double side = (1 - confidence) / 2;
    EXPECT_NEAR(means.LevelBelow(found.high), side, 0.02 * side);
    EXPECT_NEAR(means.LevelAbove(found.low), side, 0.02 * side);
  }
}

TEST(ResampledMeans, LevelsAreZeroBeyondAllAndOneOnTheOtherSide) {
  const auto clusters = NormalValues(20, 7);
  const ResampledMeans means(clusters, kResamples);
  EXPECT_EQ(means.LevelBelow(5), 0);
  EXPECT_EQ(means.LevelBelow(-5), 1);
  EXPECT_EQ(means.LevelAbove(-5), 0);
  EXPECT_EQ(means.LevelAbove(5), 1);
}

}  // namespace
}  // namespace statistics
