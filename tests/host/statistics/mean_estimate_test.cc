#include "statistics/mean_estimate.h"

#include <gmock/gmock.h>

#include <cmath>

#include "statistics/normal.h"
#include "statistics/random.h"
#include "statistics/student.h"

namespace statistics {
namespace {

constexpr int kResamples = 10000;

std::vector<Cluster> NormalValues(int count) {
  Random random(9);
  std::vector<Cluster> clusters;
  for (int i = 0; i < count; ++i) clusters.push_back({NormalQuantile(random.Uniform()), 1});
  return clusters;
}

TEST(MeanEstimate, OfEqualValuesIsThatValueHoweverFewTheyAre) {
  const std::vector<Cluster> clusters(3, Cluster{-0.5, 1});
  const MeanEstimate estimate(clusters, true, kResamples);
  const auto interval = estimate.At(0.95);
  ASSERT_TRUE(interval);
  EXPECT_EQ(interval->low, -0.5);
  EXPECT_EQ(interval->high, -0.5);
  EXPECT_EQ(estimate.LevelBelow(0), 0);
  EXPECT_EQ(estimate.LevelAbove(0), 1);
  EXPECT_EQ(estimate.LevelBelow(-0.5), 1);
}

TEST(MeanEstimate, OfFewerThanEightThingsHasNoInterval) {
  EXPECT_FALSE(MeanEstimate(NormalValues(7), false, kResamples).At(0.95));
  EXPECT_TRUE(MeanEstimate(NormalValues(8), false, kResamples).At(0.95));
  EXPECT_EQ(MeanEstimate(NormalValues(7), false, kResamples).LevelBelow(100), 1);
}

// From 1,000 things on: mean and standard error by their formulas.
TEST(MeanEstimate, OfAThousandThingsIsStudents) {
  const auto clusters = NormalValues(1000);
  double mean = 0;
  for (const Cluster& each : clusters) mean += each.sum / 1000;
  double squares = 0;
  for (const Cluster& each : clusters) squares += (each.sum - mean) * (each.sum - mean);
  const double width = 1.962341461133449 * std::sqrt(squares / 999 / 1000);
  const auto interval = MeanEstimate(clusters, false, kResamples).At(0.95);
  ASSERT_TRUE(interval);
  EXPECT_NEAR(interval->low, mean - width, 1e-12);
  EXPECT_NEAR(interval->high, mean + width, 1e-12);
}

TEST(MeanEstimate, OfNineHundredAndNinetyNineIsResampled) {
  const auto clusters = NormalValues(999);
  const auto interval = MeanEstimate(clusters, false, kResamples).At(0.95);
  const Interval expected = ResampledMeans(clusters, kResamples).At(0.95);
  ASSERT_TRUE(interval);
  EXPECT_EQ(interval->low, expected.low);
  EXPECT_EQ(interval->high, expected.high);
}

// Resamples of few things are too narrow, which matters at the small levels that many measures ask
// for.
TEST(MeanEstimate, LevelsAreNeverBelowThoseOfStudent) {
  const auto clusters = NormalValues(8);
  const MeanEstimate estimate(clusters, false, kResamples);
  double squares = 0;
  for (const Cluster& each : clusters) squares += std::pow(each.sum - estimate.mean(), 2);
  const double error = std::sqrt(squares / 7 / 8);
  for (const double off : {1.0, 2.0, 3.0, 4.0}) {
    const double level = StudentShare(-off, 7);
    EXPECT_GE(estimate.LevelBelow(estimate.mean() + off * error), level - 1e-12);
    EXPECT_GE(estimate.LevelAbove(estimate.mean() - off * error), level - 1e-12);
  }
  EXPECT_GT(estimate.LevelBelow(estimate.mean() + 20 * error), 0);
}

// Student's levels, where there are so many values that they decide alone, and resampled ones.
TEST(MeanEstimate, LevelsAndEndsMoveWithTheValues) {
  for (const int count : {20, 1000}) {
    const auto clusters = NormalValues(count);
    auto moved = clusters;
    for (Cluster& each : moved) each.sum += 5;
    const MeanEstimate here(clusters, false, kResamples);
    const MeanEstimate there(moved, false, kResamples);
    EXPECT_NEAR(there.At(0.95)->low, 5 + here.At(0.95)->low, 1e-9) << count;
    EXPECT_NEAR(there.At(0.95)->high, 5 + here.At(0.95)->high, 1e-9) << count;
    for (const double off : {-0.1, 0.02, 0.1}) {
      const double value = here.mean() + off;
      EXPECT_NEAR(there.LevelBelow(5 + value), here.LevelBelow(value), 1e-9) << count;
      EXPECT_NEAR(there.LevelAbove(5 + value), here.LevelAbove(value), 1e-9) << count;
    }
  }
}

// Uneven clusters: every value counts the same.
TEST(MeanEstimate, IsTheMeanOfAllValuesOfUnevenClusters) {
  const std::vector<Cluster> clusters = {{1, 1}, {12, 4}, {5, 5}};
  EXPECT_DOUBLE_EQ(MeanEstimate(clusters, false, kResamples).mean(), 1.8);
}

}  // namespace
}  // namespace statistics
