#include "audio_measures/band_difference.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

namespace {

constexpr double kWindow = 0.16;  // s
constexpr double kEmpty = 1e-6;   // 60 dB: bands that do not count.
constexpr double kFloor = 1e-10;  // 100 dB
constexpr int kFirstBand = -13;   // 50 Hz

std::vector<double> LongTermPower(std::span<const float> samples, size_t size) {
  WindowedSpectrum spectrum(Hann(size), size);
  std::vector<double> power(spectrum.Bins());
  for (size_t start = 0; start + size <= samples.size(); start += size / 2) {
    const std::span<const float> block = spectrum.PowerOf(samples.subspan(start, size));
    for (size_t i = 0; i < power.size(); ++i) power[i] += static_cast<double>(block[i]);
  }
  return power;
}

// The power between two places in bins; a bin reaches half a bin to either side.
double Between(std::span<const double> power, double low, double high) {
  double sum = 0;
  const auto first = static_cast<size_t>(std::floor(low + 0.5));
  for (size_t i = first; i < power.size() && static_cast<double>(i) - 0.5 < high; ++i) {
    const auto bin = static_cast<double>(i);
    sum += power[i] * (std::min(high, bin + 0.5) - std::max(low, bin - 0.5));
  }
  return sum;
}

std::vector<double> Bands(std::span<const float> samples, size_t size, int rate) {
  const std::vector<double> power = LongTermPower(samples, size);
  const double binWidth = static_cast<double>(rate) / static_cast<double>(size);
  std::vector<double> bands;
  for (int band = kFirstBand;; ++band) {
    const double low = 1000 * std::pow(10, band / 10.0 - 0.05);
    const double high = 1000 * std::pow(10, band / 10.0 + 0.05);
    if (high > rate / 2.0) return bands;
    bands.push_back(Between(power, low / binWidth, high / binWidth));
  }
}

}  // namespace

BandDifference CompareBands(std::span<const float> reference, std::span<const float> signal,
                            int rate) {
  const size_t size = std::bit_ceil(static_cast<size_t>(std::ceil(rate * kWindow)));
  if (reference.size() < size) return {Unknown(kTooShort), Unknown(kTooShort)};
  const std::vector<double> wanted = Bands(reference, size, rate);
  const std::vector<double> got = Bands(signal, size, rate);
  const double strongest = std::ranges::max(wanted);
  if (!(strongest > 0)) return {Unknown(kSilence), Unknown(kSilence)};
  double sum = 0;
  double worst = 0;
  int count = 0;
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i] < strongest * kEmpty) continue;
    const double level = std::max(got[i], strongest * kFloor);
    const double difference = std::fabs(10 * std::log10(level / wanted[i]));
    sum += difference;
    worst = std::max(worst, difference);
    ++count;
  }
  return {Known(sum / count), Known(worst)};
}

}  // namespace audio_measures
