#include "audio_measures/short_spectra.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <vector>

#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

namespace {

constexpr double kBlock = 0.03;  // s
constexpr double kHop = 0.0075;  // s
constexpr double kFloor = 1e-6;  // 60 dB.
constexpr double kExponent = 0.2;
constexpr double kLowest = -10;  // dB
constexpr double kHighest = 35;

struct CriticalBand {
  double centre;  // Hz
  double width;
};
constexpr auto kBands = std::to_array<CriticalBand>(
    {{50, 70},           {120, 70},          {190, 70},          {260, 70},
     {330, 70},          {400, 70},          {470, 70},          {540, 77.3724},
     {617.372, 86.0056}, {703.378, 95.3398}, {798.717, 105.411}, {904.128, 116.256},
     {1020.38, 127.914}, {1148.30, 140.423}, {1288.72, 153.823}, {1442.54, 168.154},
     {1610.70, 183.457}, {1794.16, 199.776}, {1993.93, 217.153}, {2211.08, 235.631},
     {2446.71, 255.255}, {2701.97, 276.072}, {2978.04, 298.126}, {3276.17, 321.465},
     {3597.63, 346.136}});
constexpr double kSharpness = 11;
constexpr double kLeastWeight = 1e-3;  // What is less is left out.

// The weights of the bins of one band, from the first that counts on.
struct BandWeights {
  size_t first = {};
  std::vector<float> weights = {};
};

std::vector<BandWeights> WeightsFor(double binWidth, size_t bins) {
  std::vector<BandWeights> all;
  for (const auto& [centre, width] : kBands) {
    BandWeights band;
    for (size_t i = 0; i < bins; ++i) {
      const double away = (static_cast<double>(i) * binWidth - centre) / width;
      const double shape = std::exp(-kSharpness * away * away);
      if (shape < kLeastWeight) continue;
      if (band.weights.empty()) band.first = i;
      band.weights.push_back(static_cast<float>(shape * kBands.front().width / width));
    }
    all.push_back(std::move(band));
  }
  return all;
}

double BandSum(const BandWeights& band, std::span<const float> power) {
  double sum = 0;
  for (size_t i = 0; i < band.weights.size(); ++i) {
    sum += static_cast<double>(band.weights[i] * std::sqrt(power[band.first + i]));
  }
  return sum;
}

// Of one block; nothing when it has next to nothing in the bands.
std::optional<double> WeightedSnr(std::span<const BandWeights> bands,
                                  std::span<const float> reference, std::span<const float> signal) {
  const double least = std::sqrt(static_cast<double>(std::ranges::max(reference)) * kFloor);
  double sum = 0;
  double weights = 0;
  for (const BandWeights& band : bands) {
    const double wanted = BandSum(band, reference);
    if (!(wanted > least)) continue;
    const double difference = std::fabs(wanted - BandSum(band, signal));
    const double ratio = 20 * std::log10(wanted / difference);
    const double weight = std::pow(wanted, kExponent);
    sum += weight * std::clamp(ratio, kLowest, kHighest);
    weights += weight;
  }
  if (!(weights > 0)) return std::nullopt;
  return sum / weights;
}

double LogDistance(std::span<const float> reference, std::span<const float> signal, float floor) {
  double squares = 0;
  for (size_t i = 0; i < reference.size(); ++i) {
    const float ratio = std::max(reference[i], floor) / std::max(signal[i], floor);
    const auto decibels = static_cast<double>(10 * std::log10(ratio));
    squares += decibels * decibels;
  }
  return std::sqrt(squares / static_cast<double>(reference.size()));
}

// The largest bin of each block.
std::vector<float> Largest(std::span<const float> samples, size_t hop, WindowedSpectrum& spectrum) {
  std::vector<float> largest;
  for (size_t start = 0; start + spectrum.WindowSize() <= samples.size(); start += hop) {
    largest.push_back(
        std::ranges::max(spectrum.PowerOf(samples.subspan(start, spectrum.WindowSize()))));
  }
  return largest;
}

}  // namespace

SpectralDifference CompareSpectra(std::span<const float> reference, std::span<const float> signal,
                                  int rate) {
  const auto window = static_cast<size_t>(std::lround(rate * kBlock));
  const auto hop = static_cast<size_t>(std::lround(rate * kHop));
  if (reference.size() < window) return {Unknown(kTooShort), Unknown(kTooShort)};
  const size_t size = std::bit_ceil(window);
  WindowedSpectrum ofReference(Hann(window), size);
  WindowedSpectrum ofSignal(Hann(window), size);
  const std::vector<float> largest = Largest(reference, hop, ofReference);
  const float floor = std::ranges::max(largest) * static_cast<float>(kFloor);
  if (!(floor > 0)) return {Unknown(kSilence), Unknown(kSilence)};
  const std::vector<BandWeights> bands =
      WeightsFor(static_cast<double>(rate) / static_cast<double>(size), ofReference.Bins());

  double snr = 0;
  double distance = 0;
  size_t blocks = 0;
  size_t blocksWithSnr = 0;
  for (size_t block = 0; block < largest.size(); ++block) {
    if (!(largest[block] > 0)) continue;
    const size_t start = block * hop;
    const std::span<const float> wanted = ofReference.PowerOf(reference.subspan(start, window));
    const std::span<const float> got = ofSignal.PowerOf(signal.subspan(start, window));
    const auto ofBlock = WeightedSnr(bands, wanted, got);
    snr += ofBlock.value_or(0);
    blocksWithSnr += ofBlock ? 1 : 0;
    distance += LogDistance(wanted, got, floor);
    ++blocks;
  }
  return {blocksWithSnr > 0 ? Known(snr / static_cast<double>(blocksWithSnr))
                            : Unknown("nothing in the critical bands"),
          Known(distance / static_cast<double>(blocks))};
}

}  // namespace audio_measures
