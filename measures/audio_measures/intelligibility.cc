#include "audio_measures/intelligibility.h"

#include <soxr.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

namespace {

constexpr size_t kBlock = 256;
constexpr size_t kHop = kBlock / 2;
constexpr size_t kTransform = 512;
constexpr size_t kBands = 15;
constexpr double kLowestCentre = 150;  // Hz
constexpr size_t kSegment = 30;        // Blocks.
constexpr double kDynamicRange = 40;   // dB
constexpr double kClip = -15;          // dB, of signal to distortion.

using Bands = std::array<double, kBands>;  // Of one block.

std::vector<float> Window() {
  std::vector<float> window(kBlock);
  for (size_t i = 0; i < kBlock; ++i) {
    const double angle = M_PI * static_cast<double>(i + 1) / (kBlock + 1);
    window[i] = static_cast<float>(std::sin(angle) * std::sin(angle));
  }
  return window;
}

// The places of the blocks of the reference that are not silent.
std::vector<size_t> ActiveBlocks(std::span<const float> reference, std::span<const float> window) {
  std::vector<double> energies;
  for (size_t start = 0; start + kBlock <= reference.size(); start += kHop) {
    double energy = 0;
    for (size_t i = 0; i < kBlock; ++i) {
      const auto value = static_cast<double>(reference[start + i] * window[i]);
      energy += value * value;
    }
    energies.push_back(energy);
  }
  std::vector<size_t> places;
  if (energies.empty()) return places;
  const double least = std::ranges::max(energies) * std::pow(10, -kDynamicRange / 10);
  for (size_t i = 0; i < energies.size(); ++i) {
    if (energies[i] > least) places.push_back(i * kHop);
  }
  return places;
}

// Windowed blocks from the places, added up one hop apart.
std::vector<float> Joined(std::span<const float> samples, std::span<const size_t> places,
                          std::span<const float> window) {
  std::vector<float> joined(places.empty() ? 0 : (places.size() - 1) * kHop + kBlock);
  for (size_t block = 0; block < places.size(); ++block) {
    for (size_t i = 0; i < kBlock; ++i) {
      joined[block * kHop + i] += samples[places[block] + i] * window[i];
    }
  }
  return joined;
}

size_t NearestBin(double hertz) {
  return static_cast<size_t>(std::lround(hertz * kTransform / kIntelligibilityRate));
}

// The norms of the third octaves of each block.
std::vector<Bands> Envelopes(std::span<const float> samples, const std::vector<float>& window) {
  WindowedSpectrum spectrum(window, kTransform);
  std::vector<Bands> envelopes;
  for (size_t start = 0; start + kBlock <= samples.size(); start += kHop) {
    const std::span<const float> power = spectrum.PowerOf(samples.subspan(start, kBlock));
    Bands bands = {};
    for (size_t band = 0; band < kBands; ++band) {
      const double centre = kLowestCentre * std::exp2(static_cast<double>(band) / 3);
      const size_t end = NearestBin(centre * std::exp2(1.0 / 6));
      for (size_t bin = NearestBin(centre * std::exp2(-1.0 / 6)); bin < end; ++bin) {
        bands[band] += static_cast<double>(power[bin]);
      }
      bands[band] = std::sqrt(bands[band]);
    }
    envelopes.push_back(bands);
  }
  return envelopes;
}

using Row = std::array<double, kSegment>;  // One band of a segment.

double Norm(std::span<const double> values) {
  double squares = 0;
  for (const double value : values) squares += value * value;
  return std::sqrt(squares);
}

// Mean 0 and norm 1; 0 where nothing varies.
void Normalise(std::span<double> values) {
  double mean = 0;
  for (const double value : values) mean += value / static_cast<double>(values.size());
  for (double& value : values) value -= mean;
  const double norm = Norm(values);
  for (double& value : values) value = norm > 0 ? value / norm : 0;
}

double Product(std::span<const double> a, std::span<const double> b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

Row RowOf(std::span<const Bands> segment, size_t band) {
  Row row;
  for (size_t i = 0; i < kSegment; ++i) row[i] = segment[i][band];
  return row;
}

// The mean over the bands of how the envelopes of a segment correlate, what is far above the
// reference's cut off.
double CorrelationOfBands(std::span<const Bands> reference, std::span<const Bands> signal) {
  const double most = 1 + std::pow(10, -kClip / 20);
  double sum = 0;
  for (size_t band = 0; band < kBands; ++band) {
    Row wanted = RowOf(reference, band);
    Row got = RowOf(signal, band);
    const double norm = Norm(got);
    const double scale = norm > 0 ? Norm(wanted) / norm : 0;
    for (size_t i = 0; i < kSegment; ++i) got[i] = std::min(got[i] * scale, wanted[i] * most);
    Normalise(wanted);
    Normalise(got);
    sum += Product(wanted, got);
  }
  return sum / kBands;
}

// Each band normalised over the segment, then each block over its bands.
std::vector<Bands> Standardised(std::span<const Bands> segment) {
  std::vector<Bands> standardised(kSegment);
  for (size_t band = 0; band < kBands; ++band) {
    Row row = RowOf(segment, band);
    Normalise(row);
    for (size_t i = 0; i < kSegment; ++i) standardised[i][band] = row[i];
  }
  for (Bands& bands : standardised) Normalise(bands);
  return standardised;
}

double CorrelationOfSpectra(std::span<const Bands> reference, std::span<const Bands> signal) {
  const std::vector<Bands> wanted = Standardised(reference);
  const std::vector<Bands> got = Standardised(signal);
  double sum = 0;
  for (size_t i = 0; i < kSegment; ++i) sum += Product(wanted[i], got[i]);
  return sum / kSegment;
}

}  // namespace

Intelligibility IntelligibilityOf(std::span<const float> reference, std::span<const float> signal) {
  const std::vector<float> window = Window();
  const std::vector<size_t> places = ActiveBlocks(reference, window);
  const std::vector<Bands> wanted = Envelopes(Joined(reference, places, window), window);
  const std::vector<Bands> got = Envelopes(Joined(signal, places, window), window);
  const auto silent = [](float sample) { return sample == 0; };
  if (std::ranges::all_of(reference, silent) || std::ranges::all_of(signal, silent)) {
    return {Unknown(kSilence), Unknown(kSilence)};
  }
  if (wanted.size() < kSegment) return {Unknown(kTooShort), Unknown(kTooShort)};
  double stoi = 0;
  double estoi = 0;
  const size_t segments = wanted.size() - kSegment + 1;
  for (size_t start = 0; start < segments; ++start) {
    const std::span<const Bands> reference30 = std::span(wanted).subspan(start, kSegment);
    const std::span<const Bands> signal30 = std::span(got).subspan(start, kSegment);
    stoi += CorrelationOfBands(reference30, signal30);
    estoi += CorrelationOfSpectra(reference30, signal30);
  }
  const auto count = static_cast<double>(segments);
  return {Known(stoi / count), Known(estoi / count)};
}

std::vector<float> AtIntelligibilityRate(std::span<const float> samples, int rate) {
  if (rate == kIntelligibilityRate) return {samples.begin(), samples.end()};
  const double ratio = static_cast<double>(kIntelligibilityRate) / rate;
  std::vector<float> resampled(
      static_cast<size_t>(std::ceil(static_cast<double>(samples.size()) * ratio)) + 1);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
  size_t done = 0;
  if (soxr_oneshot(rate, kIntelligibilityRate, 1, samples.data(), samples.size(), nullptr,
                   resampled.data(), resampled.size(), &done, nullptr, &quality,
                   nullptr) != nullptr) {
    return {};
  }
  resampled.resize(done);
  return resampled;
}

}  // namespace audio_measures
