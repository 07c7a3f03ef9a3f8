#include "desktop/dsp/rate/polyphase_filter.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <utility>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

// Half the length of the impulse response, in samples of the lower rate.
constexpr uint32_t kHalfWidth = 80;

// The shape of the Kaiser window: 100 dB beside the band (Kaiser, "Nonrecursive digital filter
// design using the I0-sinh window function", 1974).
constexpr double kBeta = 10;

// Where the filters are 6 dB down, as a part of half the lower rate, so that their stop band begins
// at that half.
constexpr double kCutoff = 0.96;

// A ratio with more places than this is interpolated between kSteps of them for each sample of the
// lower rate: the error of a straight line between two is 100 dB down.
constexpr uint32_t kMaxPlaces = 640;
constexpr uint32_t kSteps = 512;

// So many sums side by side keep vector instructions busy.
constexpr size_t kSums = 16;

// Puts the modified Bessel function of order 0 of kBeta * sqrt(x) in place of each x, which is 0 to
// 1. Sums its series for all of them side by side.
void Bessel(std::vector<double>& values) {
  std::vector<double> sums(values.size(), 1);
  for (double& x : values) x *= kBeta * kBeta / 4;
  for (int k = 28; k > 0; --k) {
    const double part = 1.0 / (k * k);
    for (size_t i = 0; i < values.size(); ++i) sums[i] = 1 + sums[i] * (values[i] * part);
  }
  values = std::move(sums);
}

// Returns the length, in source samples, that kHalfWidth samples of the lower rate have.
double HalfWidth(uint32_t source, uint32_t target) {
  return kHalfWidth * std::max(1.0, Real(source) / target);
}

size_t Taps(double halfWidth) {
  return (static_cast<size_t>(std::ceil(2 * halfWidth)) + kSums - 1) / kSums * kSums;
}

// Returns the lag, which is half a width, rounded down to whole target samples.
uint32_t Lag(uint32_t source, uint32_t target) {
  const uint64_t lag = uint64_t{kHalfWidth} * std::max(source, target) / source;
  return static_cast<uint32_t>(lag);
}

// A vector of any kind of machine, so that the sums are the same on every one.
using Quad [[gnu::vector_size(16)]] = float;

Quad At(const float* from) {
  Quad four;
  std::memcpy(&four, from, sizeof(four));
  return four;
}

float Dot(const float* a, const float* b, size_t count) {
  Quad sums[kSums / 4] = {};
  for (size_t i = 0; i < count; i += kSums) {
    for (size_t k = 0; k < kSums / 4; ++k) sums[k] += At(a + i + 4 * k) * At(b + i + 4 * k);
  }
  const Quad quarters = sums[0] + sums[1] + (sums[2] + sums[3]);
  return quarters[0] + quarters[2] + (quarters[1] + quarters[3]);
}

}  // namespace

PolyphaseFilter::PolyphaseFilter(uint32_t source, uint32_t target)
    : m_target(target),
      m_lag(desktop::Lag(source, target)),
      m_taps(desktop::Taps(HalfWidth(source, target))),
      m_steps(target) {
  const double lower = std::max(1.0, Real(source) / target);
  if (std::max(source, target) > kMaxPlaces) {
    m_steps = static_cast<size_t>(std::ceil(kSteps / lower));
  }
  m_table.resize((m_steps + 1) * m_taps);
  Design(Real(m_lag) * source / target, HalfWidth(source, target), kCutoff / lower);
}

// Fills the table. lag and halfWidth are in source samples, cutoff is a part of half the source
// rate.
void PolyphaseFilter::Design(double lag, double halfWidth, double cutoff) {
  std::vector<double> filter(m_taps);
  const std::complex<double> turn = std::polar(1.0, std::numbers::pi * cutoff);
  for (size_t step = 0; step <= m_steps; ++step) {
    const double place = Ratio(step, m_steps);
    const double first = lag - place - Real(m_taps - 1);
    for (size_t i = 0; i < m_taps; ++i) {
      const double part = (first + Real(i)) / halfWidth;
      filter[i] = std::max(0.0, 1 - part * part);
    }
    Bessel(filter);
    std::complex<double> angle = std::polar(1.0, std::numbers::pi * cutoff * first);
    double sum = 0;
    for (size_t i = 0; i < m_taps; ++i, angle *= turn) {
      const double at = first + Real(i);
      const double sinc = std::abs(at) < 1e-6 ? std::numbers::pi * cutoff : angle.imag() / at;
      filter[i] *= std::abs(at) < halfWidth ? sinc : 0;
      sum += filter[i];
    }
    // Each filter keeps a constant as it is.
    float* const row = &m_table[step * m_taps];
    for (size_t i = 0; i < m_taps; ++i) row[i] = static_cast<float>(filter[i] / sum);
  }
}

float PolyphaseFilter::At(const float* samples, uint32_t phase) const {
  if (m_steps == m_target) return Dot(samples, &m_table[phase * m_taps], m_taps);
  const double place = phase * Real(m_steps) / m_target;
  const auto step = static_cast<size_t>(place);
  const float* const row = &m_table[step * m_taps];
  const float before = Dot(samples, row, m_taps);
  const float after = Dot(samples, row + m_taps, m_taps);
  return before + static_cast<float>(place - Real(step)) * (after - before);
}

}  // namespace desktop
