#include "audio_measures/tempo.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <vector>

#include "audio_measures/real_fft.h"
#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

namespace {

constexpr double kWindow = 0.04;        // s
constexpr double kStep = 0.01;          // s
constexpr double kLowestBand = 60;      // Hz
constexpr double kHighestBand = 16000;  // Hz
constexpr size_t kBands = 24;
constexpr double kFloor = 1e-4;      // Of the mean power: rises below it are none.
constexpr double kLocalMean = 0.5;   // s on either side.
constexpr double kSlowest = 40;      // BPM
constexpr double kFastest = 240;     // BPM
constexpr double kLikeliest = 120;   // BPM
constexpr double kLeastClear = 0.1;  // Of the autocorrelation at 0.
// Over the root of the steps: four standard deviations of that of noise, as smooth as it is.
constexpr double kClear = 8;

std::vector<size_t> BandEdges(size_t window, int rate) {
  const double top = std::min(kHighestBand, rate / 2.0);
  std::vector<size_t> edges;
  for (size_t i = 0; i <= kBands; ++i) {
    const double part = static_cast<double>(i) / kBands;
    const double hertz = kLowestBand * std::pow(top / kLowestBand, part);
    edges.push_back(static_cast<size_t>(std::lround(hertz * static_cast<double>(window) / rate)));
  }
  return edges;
}

// How far the levels of the bands rise from one step to the next, in all.
std::vector<float> Onsets(std::span<const float> samples, int rate, size_t step, double mean) {
  const size_t window = std::bit_ceil(static_cast<size_t>(std::ceil(rate * kWindow)));
  WindowedSpectrum spectrum(Hann(window), window);
  const std::vector<size_t> edges = BandEdges(window, rate);
  // The windows are so long, and their mean square is 3/8.
  const double floor = kFloor * mean * static_cast<double>(window) * 3 / 8;
  std::vector<double> before(kBands);
  std::vector<float> onsets;
  for (size_t start = 0; start + window <= samples.size(); start += step) {
    const std::span<const float> power = spectrum.PowerOf(samples.subspan(start, window));
    double rise = 0;
    for (size_t band = 0; band < kBands; ++band) {
      double sum = floor;
      for (size_t i = edges[band]; i < edges[band + 1]; ++i) sum += static_cast<double>(power[i]);
      const double level = std::log(sum);
      rise += start == 0 ? 0 : std::max(0.0, level - before[band]);
      before[band] = level;
    }
    onsets.push_back(static_cast<float>(rise));
  }
  return onsets;
}

// Nine steps wide, as a bell: a beat of 37 steps and a half comes after 37 steps and after 38.
std::vector<float> Smoothed(std::vector<float> envelope) {
  for (int pass = 0; pass < 4; ++pass) {
    float before = 0;
    for (size_t i = 0; i < envelope.size(); ++i) {
      const float now = envelope[i];
      const float after = i + 1 < envelope.size() ? envelope[i + 1] : 0;
      envelope[i] = (before + 2 * now + after) / 4;
      before = now;
    }
  }
  return envelope;
}

// Less its mean nearby.
std::vector<float> Levelled(const std::vector<float>& envelope, size_t around) {
  std::vector<double> sums(envelope.size() + 1);
  for (size_t i = 0; i < envelope.size(); ++i) {
    sums[i + 1] = sums[i] + static_cast<double>(envelope[i]);
  }
  std::vector<float> levelled(envelope.size());
  for (size_t i = 0; i < envelope.size(); ++i) {
    const size_t first = i - std::min(i, around);
    const size_t end = std::min(envelope.size(), i + around + 1);
    const double mean = (sums[end] - sums[first]) / static_cast<double>(end - first);
    levelled[i] = static_cast<float>(static_cast<double>(envelope[i]) - mean);
  }
  return levelled;
}

// For lags up to half the length, as a share of that at 0; longer lags have fewer products, which
// is made up for.
std::vector<double> Autocorrelation(const std::vector<float>& values) {
  const RealFft fft(std::bit_ceil(2 * values.size()));
  std::vector<float> padded(fft.Size());
  std::ranges::copy(values, padded.begin());
  std::vector<std::complex<float>> bins(fft.Bins());
  fft.Forward(padded, bins);
  for (std::complex<float>& bin : bins) bin = CrossBin(bin, bin);
  fft.Inverse(bins, padded);
  const auto count = static_cast<double>(values.size());
  std::vector<double> correlation(values.size() / 2);
  for (size_t lag = 0; lag < correlation.size(); ++lag) {
    correlation[lag] = static_cast<double>(padded[lag]) / static_cast<double>(padded[0]) * count /
                       (count - static_cast<double>(lag));
  }
  return correlation;
}

// The place of the highest value within 2 of `near`, between its neighbours by a parabola.
double PeakNear(const std::vector<double>& values, double near) {
  const auto middle = static_cast<size_t>(std::lround(near));
  size_t best = middle;
  for (size_t i = middle - 2; i <= middle + 2; ++i) {
    if (values[i] > values[best]) best = i;
  }
  const double bend = values[best - 1] - 2 * values[best] + values[best + 1];
  const double part = bend < 0 ? (values[best - 1] - values[best + 1]) / (2 * bend) : 0;
  return static_cast<double>(best) + std::clamp(part, -0.5, 0.5);
}

// stepsPerMinute: of the envelope that is correlated, whose length is `count`.
Figure Strongest(const std::vector<double>& correlation, double stepsPerMinute, size_t count) {
  const auto first = static_cast<size_t>(std::floor(stepsPerMinute / kFastest));
  const auto last = static_cast<size_t>(std::ceil(stepsPerMinute / kSlowest));
  size_t best = 0;
  double highest = 0;
  for (size_t lag = first; lag <= last; ++lag) {
    if (correlation[lag] < correlation[lag - 1] || correlation[lag] < correlation[lag + 1])
      continue;
    const double octaves = std::log2(stepsPerMinute / static_cast<double>(lag) / kLikeliest);
    const double score = correlation[lag] * std::exp(-octaves * octaves / 2);
    if (score <= highest) continue;
    highest = score;
    best = lag;
  }
  const double clear = std::max(kLeastClear, kClear / std::sqrt(static_cast<double>(count)));
  if (best == 0 || correlation[best] < clear) return Unknown("nothing that repeats itself");
  double beat = PeakNear(correlation, static_cast<double>(best));
  for (const double beats : {2.0, 4.0, 8.0}) {
    if (beats * beat + 4 > static_cast<double>(correlation.size())) break;
    beat = PeakNear(correlation, beats * beat) / beats;
  }
  return Known(stepsPerMinute / beat);
}

}  // namespace

Figure Tempo(std::span<const float> samples, int rate) {
  if (samples.empty()) return Unknown(kNoSamples);
  if (static_cast<double>(samples.size()) < kTempoLeastSeconds * rate) return Unknown(kTooShort);
  double energy = 0;
  for (const float sample : samples) {
    energy += static_cast<double>(sample) * static_cast<double>(sample);
  }
  if (!(energy > 0)) return Unknown(kSilence);
  const auto step = static_cast<size_t>(std::lround(rate * kStep));
  const double stepsPerSecond = rate / static_cast<double>(step);
  const std::vector<float> onsets =
      Smoothed(Onsets(samples, rate, step, energy / static_cast<double>(samples.size())));
  const std::vector<float> levelled =
      Levelled(onsets, static_cast<size_t>(std::lround(kLocalMean * stepsPerSecond)));
  if (std::ranges::all_of(levelled, [](float value) { return value == 0; })) {
    return Unknown("nothing that repeats itself");
  }
  return Strongest(Autocorrelation(levelled), 60 * stepsPerSecond, levelled.size());
}

}  // namespace audio_measures
