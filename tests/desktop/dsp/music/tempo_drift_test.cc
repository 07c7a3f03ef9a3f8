#include "desktop/dsp/music/tempo_drift.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace desktop {
namespace {

double BendAfter(std::initializer_list<double> errors) {
  TempoDrift drift;
  for (const double error : errors) drift.Take(error);
  return drift.Bend();
}

TEST(TempoDrift, IsNoneOfASteadyTempo) {
  EXPECT_EQ(BendAfter({0.1}), 0);
  EXPECT_EQ(BendAfter({0.1, -0.1, 0.1, -0.1}), 0) << "now early, now late";
  EXPECT_EQ(BendAfter({0.1, 0.09, 0.08, 0.07}), 0) << "one late beat that is caught up with";
  EXPECT_EQ(BendAfter({0.019, 0.019, 0.019}), 0) << "nobody is exact";
  EXPECT_EQ(BendAfter({0.001, 0.03}), 0);
}

TEST(TempoDrift, IsFollowedFromTheSecondErrorOnOneSide) {
  EXPECT_NEAR(BendAfter({0.03, 0.03}), 0.97 * 0.2 * 0.03, 1e-12);
  EXPECT_NEAR(BendAfter({-0.021, -0.021}), -0.97 * 0.2 * 0.021, 1e-12);
  EXPECT_NEAR(BendAfter({0.04, 0.0385}), 0.97 * 0.2 * 0.0385, 1e-12);
  const double bend = BendAfter({0.03, 0.03});
  EXPECT_NEAR(BendAfter({0.03, 0.03, 0.01}), 0.97 * (bend + 0.2 * 0.01), 1e-12);
  EXPECT_NEAR(BendAfter({0.03, 0.03, -0.01}), 0.97 * (bend - 0.2 * 0.01), 1e-12);
}

TEST(TempoDrift, HasAnEnd) {
  EXPECT_EQ(BendAfter({0.12, 0.12, 0.12, 0.12, 0.12}), TempoDrift::kMostBend);
  EXPECT_EQ(BendAfter({-0.12, -0.12, -0.12, -0.12, -0.12}), -TempoDrift::kMostBend);
  // 5.8 thousandths fade below 3 after 22 beats more, and then there is none.
  TempoDrift drift;
  drift.Take(0.03);
  drift.Take(0.03);
  for (int beat = 0; beat < 21; ++beat) drift.Take(0);
  EXPECT_GE(drift.Bend(), 0.003);
  drift.Take(0);
  EXPECT_EQ(drift.Bend(), 0);
  drift.Take(0.03);
  EXPECT_EQ(drift.Bend(), 0) << "the one before was none";
}

}  // namespace
}  // namespace desktop
