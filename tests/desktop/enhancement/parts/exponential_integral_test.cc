#include "desktop/enhancement/parts/exponential_integral.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(ExponentialIntegral, IsRightToATenThousandthOfItself) {
  for (double x = 1e-6; x < 60; x *= 1.01) {
    const double exact = -std::expint(-x);
    const auto value = static_cast<double>(desktop::ExponentialIntegral(static_cast<float>(x)));
    EXPECT_NEAR(value / exact, 1, 1e-4) << x;
  }
}

}  // namespace
