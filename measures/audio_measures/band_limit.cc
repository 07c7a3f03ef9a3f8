#include "audio_measures/band_limit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <vector>

#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

namespace {

constexpr double kWindow = 0.08;        // s
constexpr double kLost = 0.01;          // 20 dB.
constexpr double kBelowMaximum = 1e-7;  // 70 dB.
constexpr size_t kAround = 4;           // Bins on either side.
constexpr size_t kFirstBin = 2;         // What is constant does not count.

// Summed over the windows, the mean of neighbouring bins.
std::vector<double> LongTermSpectrum(std::span<const float> samples, size_t size) {
  WindowedSpectrum spectrum(Hann(size), size);
  std::vector<double> sums(spectrum.Bins() + 1);  // Of the bins below.
  std::vector<double> power(spectrum.Bins());
  for (size_t start = 0; start + size <= samples.size(); start += size / 2) {
    const std::span<const float> block = spectrum.PowerOf(samples.subspan(start, size));
    for (size_t i = kFirstBin; i < block.size(); ++i) power[i] += static_cast<double>(block[i]);
  }
  std::partial_sum(power.begin(), power.end(), sums.begin() + 1);
  for (size_t i = 0; i < power.size(); ++i) {
    const size_t first = i - std::min(i, kAround);
    const size_t end = std::min(power.size(), i + kAround + 1);
    power[i] = (sums[end] - sums[first]) / static_cast<double>(end - first);
  }
  return power;
}

double Sum(const std::vector<double>& power) {
  return std::accumulate(power.begin(), power.end(), 0.0);
}

}  // namespace

Figure BandLimit(std::span<const float> input, std::span<const float> output, int rate) {
  const size_t size = std::bit_ceil(static_cast<size_t>(std::ceil(rate * kWindow)));
  if (std::min(input.size(), output.size()) < size) return Unknown(kTooShort);
  const std::vector<double> before = LongTermSpectrum(input, size);
  const std::vector<double> after = LongTermSpectrum(output, size);
  if (!(Sum(before) > 0) || !(Sum(after) > 0)) return Unknown(kSilence);

  const double gain = Sum(after) / Sum(before);
  const double least = *std::ranges::max_element(before) * kBelowMaximum;
  const auto above = [&](size_t i) { return after[i] / (gain * kLost * before[i]); };
  size_t bin = before.size() - 1;
  while (bin > 0 && (before[bin] < least || above(bin) < 1)) --bin;
  auto place = static_cast<double>(bin);
  if (bin + 1 < before.size() && before[bin + 1] >= least && above(bin + 1) > 0) {
    place += std::log(above(bin)) / std::log(above(bin) / above(bin + 1));
  }
  return Known(place * rate / static_cast<double>(size));
}

}  // namespace audio_measures
