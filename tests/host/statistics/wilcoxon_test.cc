#include "statistics/wilcoxon.h"

#include <gmock/gmock.h>

#include <cmath>
#include <vector>

#include "statistics/random.h"

namespace statistics {
namespace {

// Twice the rank that a size has among all, its ties sharing theirs.
int DoubledRank(const std::vector<double>& values, double value) {
  int below = 0;
  int same = 0;
  for (const double each : values) {
    below += std::abs(each) < std::abs(value) ? 1 : 0;
    same += std::abs(each) == std::abs(value) ? 1 : 0;
  }
  return 2 * below + same + 1;
}

// p by trying all signs.
double EnumeratedP(const std::vector<double>& all) {
  std::vector<double> values;
  for (const double each : all) {
    if (each != 0) values.push_back(each);
  }
  std::vector<int> ranks;
  int found = 0;
  for (const double each : values) {
    ranks.push_back(DoubledRank(values, each));
    found += each > 0 ? ranks.back() : 0;
  }
  const unsigned ways = 1U << values.size();
  unsigned below = 0;
  unsigned above = 0;
  for (unsigned signs = 0; signs < ways; ++signs) {
    int sum = 0;
    for (size_t i = 0; i < ranks.size(); ++i) sum += (signs >> i & 1U) != 0 ? ranks[i] : 0;
    below += sum <= found ? 1 : 0;
    above += sum >= found ? 1 : 0;
  }
  return std::min(1.0, 2.0 * std::min(below, above) / ways);
}

TEST(WilcoxonP, IsThatOfAllSignsWithTiesAndZeros) {
  Random random(1);
  for (int table = 0; table < 100; ++table) {
    std::vector<double> values(1 + random.Next() % 15);
    // Few different sizes: many ties and zeros.
    for (double& value : values) value = static_cast<double>(random.Next() % 11) - 4;
    EXPECT_NEAR(WilcoxonP(values), EnumeratedP(values), 1e-12);
  }
}

TEST(WilcoxonP, IsThatOfAllSignsWithoutTies) {
  Random random(2);
  for (int table = 0; table < 30; ++table) {
    std::vector<double> values(1 + random.Next() % 15);
    for (double& value : values) value = random.Uniform() - 0.4;
    EXPECT_NEAR(WilcoxonP(values), EnumeratedP(values), 1e-12);
  }
}

TEST(WilcoxonP, DropsZeros) {
  EXPECT_DOUBLE_EQ(WilcoxonP(std::vector<double>{0, 1, 2, 0, 3, 0}), 0.25);
  EXPECT_DOUBLE_EQ(WilcoxonP(std::vector<double>{0, 0}), 1);
  EXPECT_DOUBLE_EQ(WilcoxonP({}), 1);
}

// With 50 on one side the exact p is 2 / 2^50; the normal one would be 7.6e-10.
TEST(WilcoxonP, IsExactUpToFiftyPairs) {
  std::vector<double> values(50);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>(i + 1);
  EXPECT_DOUBLE_EQ(WilcoxonP(values), std::ldexp(1, -49));
  values.push_back(51);
  EXPECT_NEAR(WilcoxonP(values), 5.145e-10, 1e-13);
}

// 60 equal ones, 40 of them positive: each has the rank 30.5, z = 10 * 30.5 / sqrt(60 * 30.5^2 /
// 4).
TEST(WilcoxonP, CorrectsTheNormalOneForTies) {
  std::vector<double> values(60, 1.0);
  std::fill_n(values.begin(), 20, -1.0);
  const double z = 10 / std::sqrt(60.0 / 4);
  EXPECT_NEAR(WilcoxonP(values), std::erfc(z / std::sqrt(2.0)), 1e-12);
}

}  // namespace
}  // namespace statistics
