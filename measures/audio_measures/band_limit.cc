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

double Sum(std::span<const double> power) {
  return std::accumulate(power.begin(), power.end(), 0.0);
}

// Summed over the windows, the mean of neighbouring bins.
std::vector<double> LongTermSpectrum(std::span<const float> samples, size_t size) {
  WindowedSpectrum spectrum(Hann(size), size);
  std::vector<double> power(spectrum.Bins());
  for (size_t start = 0; start + size <= samples.size(); start += size / 2) {
    const std::span<const float> block = spectrum.PowerOf(samples.subspan(start, size));
    for (size_t i = kFirstBin; i < block.size(); ++i) power[i] += static_cast<double>(block[i]);
  }
  std::vector<double> means;
  for (size_t i = 0; i < power.size(); ++i) {
    const size_t first = i - std::min(i, kAround);
    const std::span<const double> around =
        std::span(power).subspan(first, std::min(power.size(), i + kAround + 1) - first);
    means.push_back(Sum(around) / static_cast<double>(around.size()));
  }
  return means;
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
  std::vector<double> above;  // What is left of each bin, over what would be lost.
  for (size_t i = 0; i < before.size(); ++i) {
    above.push_back(before[i] < least ? 0 : after[i] / (gain * kLost * before[i]));
  }
  const auto isKept = [](double each) { return each >= 1; };
  const auto end = std::find_if(above.rbegin(), above.rend(), isKept).base();
  if (end == above.begin()) return Known(0);
  const double more = end == above.end() ? 0 : std::log(end[-1]) / std::log(end[-1] / *end);
  const double place = static_cast<double>(end - above.begin() - 1) + more;
  return Known(place * rate / static_cast<double>(size));
}

}  // namespace audio_measures
