#include "desktop/dsp/filters/equalizer_design.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace desktop {

namespace {

constexpr std::array<double, kEqualizerBands> kCentres = {16,   31.5, 63,   125,  250,  500,
                                                          1000, 2000, 4000, 8000, 16000};
constexpr double kOctaves = 1.0;

// The most gain, dB, that a bell may need between neighbours that pull down.
constexpr double kMaxGain = 60;

using Vector = std::array<double, kEqualizerBands>;
using Matrix = std::array<Vector, kEqualizerBands>;

// The gain (dB) of a bell at a frequency, and how it grows with the bell's own gain (dB per dB):
// those of Bristow-Johnson's peaking filter ("Audio EQ Cookbook", 1998) in the analogue plane that
// the bilinear transform maps to.
struct BellGain {
  double decibels;
  double slope;
};

BellGain GainOfBell(const EqualizerBand& bell, double gain, double tangent) {
  const double t = tangent / bell.centreTangent;
  const double off = (1 - t * t) * (1 - t * t);
  const double width = t * t / (bell.q * bell.q);
  const double square = std::pow(10.0, gain / 20);
  const double up = off + width * square;
  const double down = off + width / square;
  return {10 * std::log10(up / down), 0.5 * (width * square / up + width / square / down)};
}

// Solves matrix * x = right for a positive definite matrix by elimination.
Vector Solve(Matrix matrix, Vector right, size_t size) {
  for (size_t k = 0; k < size; ++k) {
    for (size_t row = k + 1; row < size; ++row) {
      const double factor = matrix[row][k] / matrix[k][k];
      for (size_t col = k; col < size; ++col) matrix[row][col] -= factor * matrix[k][col];
      right[row] -= factor * right[k];
    }
  }
  for (size_t k = size; k-- > 0;) {
    for (size_t col = k + 1; col < size; ++col) right[k] -= matrix[k][col] * right[col];
    right[k] /= matrix[k][k];
  }
  return right;
}

// One step of the least squares solution; the damping keeps it away from where bells cannot help.
Vector Step(const Matrix& slopes, const Vector& missing, size_t size) {
  constexpr double kDamping = 1e-3;
  Matrix normal{};
  Vector right{};
  for (size_t row = 0; row < size; ++row) {
    for (size_t col = 0; col < size; ++col) {
      for (size_t k = 0; k < size; ++k) normal[row][col] += slopes[k][row] * slopes[k][col];
    }
    normal[row][row] += kDamping;
    for (size_t k = 0; k < size; ++k) right[row] += slopes[k][row] * missing[k];
  }
  return Solve(normal, right, size);
}

}  // namespace

EqualizerDesign DesignEqualizer(int sampleRate) {
  EqualizerDesign design;
  for (const double centre : kCentres) {
    if (centre >= 0.45 * sampleRate) break;
    const double w = 2 * std::numbers::pi * centre / sampleRate;
    const double q = 0.5 / std::sinh(std::numbers::ln2 / 2 * kOctaves * w / std::sin(w));
    design.band[design.bands++] = {std::tan(w / 2), q};
  }
  return design;
}

std::array<double, kEqualizerBands> SolveBandGains(
    const EqualizerDesign& design, const std::array<float, kEqualizerBands>& wanted) {
  const size_t size = design.bands;
  Vector gains{};
  std::copy_n(wanted.begin(), size, gains.begin());
  for (int iteration = 0; iteration < 60; ++iteration) {
    Matrix slopes{};
    Vector missing{};
    double worst = 0;
    for (size_t at = 0; at < size; ++at) {
      missing[at] = wanted[at];
      for (size_t k = 0; k < size; ++k) {
        const BellGain bell = GainOfBell(design.band[k], gains[k], design.band[at].centreTangent);
        missing[at] -= bell.decibels;
        slopes[at][k] = bell.slope;
      }
      worst = std::max(worst, std::abs(missing[at]));
    }
    if (worst < 0.01) break;
    const Vector step = Step(slopes, missing, size);
    // Steps of more than 6 dB overshoot.
    double longest = 6;
    for (size_t k = 0; k < size; ++k) longest = std::max(longest, std::abs(step[k]));
    for (size_t k = 0; k < size; ++k) {
      gains[k] = std::clamp(gains[k] + step[k] * 6 / longest, -kMaxGain, kMaxGain);
    }
  }
  return gains;
}

}  // namespace desktop
