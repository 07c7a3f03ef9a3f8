#pragma once

#include <cmath>

namespace desktop {

// Returns the exponential integral E1 for x > 0, to about 1e-4 of itself (Abramowitz and Stegun,
// "Handbook of Mathematical Functions", 1964, 5.1.53 and 5.1.54).
inline float ExponentialIntegral(float x) {
  if (x < 1.0f) {
    const float sum =
        -0.57721566f +
        x * (0.99999193f +
             x * (-0.24991055f + x * (0.05519968f + x * (-0.00976004f + x * 0.00107857f))));
    return sum - std::log(x);
  }
  return (x * x + 2.334733f * x + 0.250621f) /
         ((x * x + 3.330657f * x + 1.681534f) * x * std::exp(x));
}

}  // namespace desktop
