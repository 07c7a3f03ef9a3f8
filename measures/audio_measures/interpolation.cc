#include "audio_measures/interpolation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "audio_measures/copy_samples.h"

namespace audio_measures {

namespace {

constexpr size_t kTaps = 2 * kInterpolationReach;
constexpr double kBeta = 10.06;  // 100 dB.
constexpr size_t kPhases = 512;  // Of the table for steps other than 1, linear in between.
constexpr size_t kBlock = 1024;
constexpr size_t kLanes = 8;

using Taps = std::array<float, kTaps>;

// The modified Bessel function of order 0, by its series.
double Bessel(double x) {
  double term = 1;
  double sum = 1;
  for (int i = 1; term > 1e-17 * sum; ++i) {
    term *= (x / 2 / i) * (x / 2 / i);
    sum += term;
  }
  return sum;
}

// For a place `part` of a sample after the one that tap kInterpolationReach - 1 stands for.
Taps TapsFor(double part) {
  Taps taps;
  for (size_t i = 0; i < kTaps; ++i) {
    const double away = static_cast<double>(i) - (kInterpolationReach - 1) - part;
    const double edge = away / kInterpolationReach;
    const double window =
        std::fabs(edge) < 1 ? Bessel(kBeta * std::sqrt(1 - edge * edge)) / Bessel(kBeta) : 0;
    const double sinc = std::fabs(away) < 1e-12 ? 1 : std::sin(M_PI * away) / (M_PI * away);
    taps[i] = static_cast<float>(window * sinc);
  }
  return taps;
}

// All values are the same part of a sample after one of them.
void Filter(std::span<const float> padded, const Taps& taps, std::span<float> values) {
  for (size_t start = 0; start < values.size(); start += kBlock) {
    const std::span<float> block = values.subspan(start, std::min(kBlock, values.size() - start));
    std::ranges::fill(block, 0.0F);
    for (size_t tap = 0; tap < kTaps; ++tap) {
      const float weight = taps[tap];
      const float* const from = padded.data() + start + tap;
      for (size_t i = 0; i < block.size(); ++i) block[i] += weight * from[i];
    }
  }
}

// The value `part` of the way from what `low` gives to what `high` gives.
float Between(const float* from, const Taps& low, const Taps& high, float part) {
  std::array<float, kLanes> lows = {};
  std::array<float, kLanes> highs = {};
  for (size_t i = 0; i < kTaps; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) {
      lows[lane] += low[i + lane] * from[i + lane];
      highs[lane] += high[i + lane] * from[i + lane];
    }
  }
  float sum = 0;
  for (size_t lane = 0; lane < kLanes; ++lane)
    sum += lows[lane] + part * (highs[lane] - lows[lane]);
  return sum;
}

const std::vector<Taps>& Table() {
  static const std::vector<Taps> table = [] {
    std::vector<Taps> taps;
    for (size_t i = 0; i <= kPhases; ++i) {
      taps.push_back(TapsFor(static_cast<double>(i) / static_cast<double>(kPhases)));
    }
    return taps;
  }();
  return table;
}

}  // namespace

std::vector<float> Interpolate(std::span<const float> samples, double first, double step,
                               size_t count) {
  const double last = first + step * static_cast<double>(count);
  const auto begin = static_cast<int64_t>(std::floor(first)) - (int64_t{kInterpolationReach} - 1);
  const auto end = static_cast<int64_t>(std::floor(last)) + int64_t{kInterpolationReach} + 2;
  std::vector<float> padded(static_cast<size_t>(std::max(end - begin, int64_t{kTaps})));
  CopySamples(samples, begin, padded);

  const double offset = first - std::floor(first);
  if (step == 1 && offset == 0) {  // Each value is a sample.
    const auto from = padded.begin() + (kInterpolationReach - 1);
    return {from, from + static_cast<int64_t>(count)};
  }
  std::vector<float> values(count);
  if (step == 1) {
    Filter(padded, TapsFor(offset), values);
    return values;
  }
  for (size_t i = 0; i < count; ++i) {
    const double place = offset + step * static_cast<double>(i);
    const auto whole = static_cast<size_t>(place);
    const double phase = (place - static_cast<double>(whole)) * kPhases;
    const auto row = static_cast<size_t>(phase);
    values[i] = Between(padded.data() + whole, Table()[row], Table()[row + 1],
                        static_cast<float>(phase - static_cast<double>(row)));
  }
  return values;
}

}  // namespace audio_measures
