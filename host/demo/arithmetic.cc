#include "demo/arithmetic.h"

#include <cmath>

namespace host {

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kLn10 = 2.302585092994046;

}  // namespace

// The series of Taylor within a quarter of a turn.
double Sine(double turns) {
  double turn = turns - std::floor(turns + 0.5);
  if (turn > 0.25) turn = 0.5 - turn;
  if (turn < -0.25) turn = -0.5 - turn;
  const double x = kTwoPi * turn;
  double sum = 0;
  double term = x;
  for (int n = 1; n <= 17; n += 2) {
    sum += term;
    term *= -x * x / ((n + 1) * (n + 2));
  }
  return sum;
}

// The series of Taylor for a 1024th of x, squared ten times.
double Exp(double x) {
  const double small = x / 1024;
  double power = 1 + small * (1 + small / 2 * (1 + small / 3 * (1 + small / 4)));
  for (int i = 0; i < 10; ++i) power *= power;
  return power;
}

double Gain(double db) { return Exp(db * (kLn10 / 20)); }

}  // namespace host
