#include "audio_measures/tempo.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numeric>
#include <optional>
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
constexpr double kFloor = 1e-4;  // Of the mean power: rises below it are none.
constexpr double kMeanSquareOfHann = 0.375;
constexpr double kLocalMean = 0.5;   // s on either side.
constexpr double kShortest = 0.25;   // s, a beat of 240 BPM.
constexpr double kLongest = 1.5;     // s, a beat of 40 BPM.
constexpr double kLikeliest = 0.5;   // s
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

using Levels = std::array<double, kBands>;

Levels LevelsOf(std::span<const float> power, const std::vector<size_t>& edges, double floor) {
  Levels levels;
  for (size_t band = 0; band < kBands; ++band) {
    const auto bins = power.subspan(edges[band], edges[band + 1] - edges[band]);
    levels[band] = std::log(std::accumulate(bins.begin(), bins.end(), floor));
  }
  return levels;
}

double RiseInAll(const Levels& before, const Levels& now) {
  return std::transform_reduce(now.begin(), now.end(), before.begin(), 0.0, std::plus(),
                               [](double a, double b) { return std::max(0.0, a - b); });
}

// How far the levels of the bands rise from one step to the next, in all.
std::vector<float> Onsets(std::span<const float> samples, int rate, size_t step, double mean) {
  const size_t window = std::bit_ceil(static_cast<size_t>(std::ceil(rate * kWindow)));
  WindowedSpectrum spectrum(Hann(window), window);
  const std::vector<size_t> edges = BandEdges(window, rate);
  const double floor = kFloor * mean * static_cast<double>(window) * kMeanSquareOfHann;
  Levels before;
  before.fill(std::numeric_limits<double>::infinity());  // What is there at first sets in earlier.
  std::vector<float> onsets;
  for (size_t start = 0; start + window <= samples.size(); start += step) {
    const Levels now = LevelsOf(spectrum.PowerOf(samples.subspan(start, window)), edges, floor);
    onsets.push_back(static_cast<float>(RiseInAll(before, now)));
    before = now;
  }
  return onsets;
}

// By (1, 2, 1), four times, each of them (1, 1) on and back. Nine steps wide, as a bell: a beat of
// 37 steps and a half comes after 37 steps and after 38.
std::vector<float> Smoothed(std::vector<float> envelope) {
  for (int pass = 0; pass < 4; ++pass) {
    std::adjacent_difference(envelope.begin(), envelope.end(), envelope.begin(), std::plus());
    std::adjacent_difference(envelope.rbegin(), envelope.rend(), envelope.rbegin(), std::plus());
  }
  return envelope;
}

// Less its mean nearby.
std::vector<float> Levelled(const std::vector<float>& envelope, size_t around) {
  std::vector<double> sums = {0.0};
  for (const float value : envelope) sums.push_back(sums.back() + static_cast<double>(value));
  std::vector<float> levelled;
  for (const float value : envelope) {
    const size_t i = levelled.size();
    const size_t first = i - std::min(i, around);
    const size_t end = std::min(envelope.size(), i + around);
    const double mean = (sums[end] - sums[first]) / static_cast<double>(end - first);
    levelled.push_back(static_cast<float>(static_cast<double>(value) - mean));
  }
  return levelled;
}

// For lags up to half the length, as a share of that at 0; longer lags have fewer products, which
// is made up for.
std::vector<double> Autocorrelation(const std::vector<float>& values) {
  const size_t lags = values.size() / 2;
  const RealFft fft(std::bit_ceil(values.size() + lags));
  std::vector<float> padded(fft.Size());
  std::ranges::copy(values, padded.begin());
  std::vector<std::complex<float>> bins(fft.Bins());
  fft.Forward(padded, bins);
  for (std::complex<float>& bin : bins) bin = CrossBin(bin, bin);
  fft.Inverse(bins, padded);
  const auto count = static_cast<double>(values.size());
  std::vector<double> correlation;
  for (const float sum : std::span(padded).first(lags)) {
    const auto lag = static_cast<double>(correlation.size());
    correlation.push_back(static_cast<double>(sum / padded.front()) * count / (count - lag));
  }
  return correlation;
}

// The place of the highest value within 2 of `near`, between its neighbours by a parabola.
double PeakNear(const std::vector<double>& values, size_t near) {
  const auto nearby = std::span(values).subspan(near - 2, 5);
  const auto after = static_cast<size_t>(std::ranges::max_element(nearby) - nearby.begin());
  const size_t best = near - 2 + after;
  const double bend = values[best - 1] - 2 * values[best] + values[best + 1];
  const double part = bend < 0 ? (values[best - 1] - values[best + 1]) / (2 * bend) : 0;
  return static_cast<double>(best) + std::clamp(part, -0.5, 0.5);
}

// stepsPerSecond: of the envelope that is correlated, whose length is `count`.
Figure Strongest(const std::vector<double>& correlation, double stepsPerSecond, size_t count) {
  const auto first = static_cast<size_t>(std::floor(kShortest * stepsPerSecond));
  const auto last = static_cast<size_t>(std::ceil(kLongest * stepsPerSecond));
  std::optional<size_t> best;
  double highest = 0;
  for (size_t lag = first; lag <= last; ++lag) {
    if (correlation[lag] < correlation[lag - 1] || correlation[lag] < correlation[lag + 1])
      continue;
    const double octaves = std::log2(static_cast<double>(lag) / (kLikeliest * stepsPerSecond));
    const double score = correlation[lag] * std::exp(-octaves * octaves / 2);
    if (score <= highest) continue;
    highest = score;
    best = lag;
  }
  const double clear = std::max(kLeastClear, kClear / std::sqrt(static_cast<double>(count)));
  if (!best || correlation[*best] < clear) return Unknown("nothing that repeats itself");
  double beat = PeakNear(correlation, *best);
  for (const double beats : {2.0, 4.0, 8.0}) {
    const auto near = static_cast<size_t>(std::lround(beats * beat));
    if (near + 4 <= correlation.size()) beat = PeakNear(correlation, near) / beats;
  }
  return Known(60 * stepsPerSecond / beat);
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
  return Strongest(Autocorrelation(levelled), stepsPerSecond, levelled.size());
}

}  // namespace audio_measures
