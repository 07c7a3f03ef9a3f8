#include "statistics/student.h"

#include <cmath>
#include <initializer_list>
#include <numbers>

#include "statistics/normal.h"

namespace statistics {

namespace {

// The continued fraction of the incomplete beta function (DLMF 8.17.22), by Lentz's method.
double BetaFraction(double a, double b, double x) {
  constexpr double kTiny = 1e-300;
  constexpr int kMaxTerms = 10000;
  const auto nonZero = [](double value) { return std::abs(value) < kTiny ? kTiny : value; };
  double c = 1;
  double d = 1 / nonZero(1 - (a + b) * x / (a + 1));
  double fraction = d;
  for (int m = 1; m < kMaxTerms; ++m) {
    double change = 1;
    const double even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
    const double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
    for (const double term : {even, odd}) {
      d = 1 / nonZero(1 + term * d);
      c = nonZero(1 + term / c);
      change = c * d;
      fraction *= change;
    }
    if (std::abs(change - 1) < 1e-16) break;
  }
  return fraction;
}

// The regularised incomplete beta function.
double IncompleteBeta(double a, double b, double x) {
  if (x <= 0) return 0;
  if (x >= 1) return 1;
  const double front = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                a * std::log(x) + b * std::log1p(-x));
  // The fraction converges quickly on this side.
  if (x < (a + 1) / (a + b + 2)) return front * BetaFraction(a, b, x) / a;
  return 1 - front * BetaFraction(b, a, 1 - x) / b;
}

double StudentDensity(double t, double freedom) {
  return std::exp(std::lgamma((freedom + 1) / 2) - std::lgamma(freedom / 2) -
                  (freedom + 1) / 2 * std::log1p(t * t / freedom)) /
         std::sqrt(freedom * std::numbers::pi);
}

}  // namespace

double StudentShare(double t, double freedom) {
  const double tail = 0.5 * IncompleteBeta(freedom / 2, 0.5, freedom / (freedom + t * t));
  return t < 0 ? tail : 1 - tail;
}

double StudentQuantile(double share, double freedom) {
  // The first terms of Abramowitz and Stegun 26.7.5, then Newton's method.
  const double z = NormalQuantile(share);
  double t = z + (z * z * z + z) / (4 * freedom);
  for (int step = 0; step < 20; ++step) {
    t -= (StudentShare(t, freedom) - share) / StudentDensity(t, freedom);
  }
  return t;
}

}  // namespace statistics
