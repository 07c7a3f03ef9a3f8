#include "audio_measures/difference.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace audio_measures {

namespace {

constexpr double kBlock = 0.02;  // s
constexpr double kLowestOfBlock = -10;
constexpr double kHighestOfBlock = 35;

double Ratio(double signal, double error) {
  const double least = signal * std::pow(10, -kHighestSnr / 10);
  return 10 * std::log10(signal / std::max(error, least));
}

struct Energies {
  double reference = 0;
  double difference = 0;
};

Energies EnergiesOf(std::span<const float> reference, std::span<const float> signal) {
  Energies energies;
  for (size_t i = 0; i < reference.size(); ++i) {
    const auto wanted = static_cast<double>(reference[i]);
    const double difference = wanted - static_cast<double>(signal[i]);
    energies.reference += wanted * wanted;
    energies.difference += difference * difference;
  }
  return energies;
}

double Mean(std::span<const float> samples) {
  return std::accumulate(samples.begin(), samples.end(), 0.0) / static_cast<double>(samples.size());
}

}  // namespace

Figure Snr(std::span<const float> reference, std::span<const float> signal) {
  const auto [energy, difference] = EnergiesOf(reference, signal);
  return energy > 0 ? Known(Ratio(energy, difference)) : Unknown(kSilence);
}

Figure SiSdr(std::span<const float> reference, std::span<const float> signal) {
  const double referenceMean = Mean(reference);
  const double signalMean = Mean(signal);
  double product = 0;
  double ofReference = 0;
  double ofSignal = 0;
  for (size_t i = 0; i < reference.size(); ++i) {
    const double a = static_cast<double>(reference[i]) - referenceMean;
    const double b = static_cast<double>(signal[i]) - signalMean;
    product += a * b;
    ofReference += a * a;
    ofSignal += b * b;
  }
  if (!(ofReference > 0) || !(ofSignal > 0)) return Unknown(kSilence);
  // Summed once more, as the difference of two sums would lose what is far below them.
  const double scale = product / ofReference;
  double error = 0;
  for (size_t i = 0; i < reference.size(); ++i) {
    const double target = scale * (static_cast<double>(reference[i]) - referenceMean);
    error += std::pow(target - (static_cast<double>(signal[i]) - signalMean), 2);
  }
  const double target = scale * scale * ofReference;
  return target > 0 ? Known(Ratio(target, error)) : Unknown("nothing of the reference in it");
}

Figure SegSnr(std::span<const float> reference, std::span<const float> signal, int rate) {
  const auto block = static_cast<size_t>(std::lround(rate * kBlock));
  if (reference.size() < block) return Unknown(kTooShort);
  double sum = 0;
  size_t blocks = 0;
  for (size_t start = 0; start + block <= reference.size(); start += block) {
    const auto [energy, difference] =
        EnergiesOf(reference.subspan(start, block), signal.subspan(start, block));
    if (!(energy > 0)) continue;
    sum += std::clamp(Ratio(energy, difference), kLowestOfBlock, kHighestOfBlock);
    ++blocks;
  }
  return blocks > 0 ? Known(sum / static_cast<double>(blocks)) : Unknown(kSilence);
}

}  // namespace audio_measures
