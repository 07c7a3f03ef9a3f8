#include "audio_measures/pitch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <optional>
#include <vector>

#include "audio_measures/median.h"
#include "audio_measures/real_fft.h"

namespace audio_measures {

namespace {

constexpr int kWindow = 40;     // Windows a second, of 25 ms each.
constexpr int kStep = 100;      // Steps a second.
constexpr int kLowest = 60;     // Hz
constexpr int kHighest = 1000;  // Hz
constexpr double kThreshold = 0.1;
constexpr double kSofter = 1e-3;  // 30 dB below the loudest.
constexpr size_t kLeastVoiced = 10;

// Of the whole samples in a part of a second.
size_t Samples(int rate, int parts) { return static_cast<size_t>(rate / parts); }

class Yin {
 public:
  explicit Yin(int rate)
      : m_rate(rate),
        m_window(Samples(rate, kWindow)),
        m_least(Samples(rate, kHighest)),
        m_most(Samples(rate, kLowest) + 2),
        m_fft(std::bit_ceil(BlockSamples())),
        m_padded(m_fft.Size()),
        m_products(m_fft.Size()),
        m_ofWindow(m_fft.Bins()),
        m_ofBlock(m_fft.Bins()),
        m_difference(m_most + 1) {}

  size_t BlockSamples() const { return m_window + m_most; }

  // Of the window at the start of the block; `energy` is the window's.
  std::optional<double> Pitch(std::span<const float> block, double* energy) {
    *energy = Differences(block);
    double sum = 0;
    std::vector<double> normalised(m_difference.size(), 1);
    for (size_t lag = 1; lag < m_difference.size(); ++lag) {
      sum += m_difference[lag];
      if (sum > 0) normalised[lag] = m_difference[lag] * static_cast<double>(lag) / sum;
    }
    size_t lag = m_least;
    while (lag < m_most && normalised[lag] >= kThreshold) ++lag;
    while (lag < m_most && normalised[lag + 1] < normalised[lag]) ++lag;
    if (lag == m_most) return std::nullopt;
    const double pitch = m_rate / (static_cast<double>(lag) + Between(lag));
    return pitch >= kLowest && pitch <= kHighest ? std::optional(pitch) : std::nullopt;
  }

 private:
  // The squared difference of the window from the one `lag` samples later, for every lag.
  double Differences(std::span<const float> block) {
    std::ranges::copy(block, m_padded.begin());
    m_fft.Forward(m_padded, m_ofBlock);
    std::fill(m_padded.begin() + static_cast<std::ptrdiff_t>(m_window), m_padded.end(), 0.0F);
    m_fft.Forward(m_padded, m_ofWindow);
    for (size_t i = 0; i < m_ofBlock.size(); ++i) {
      m_ofBlock[i] = CrossBin(m_ofWindow[i], m_ofBlock[i]);
    }
    m_fft.Inverse(m_ofBlock, m_products);
    const auto square = [&](size_t i) {
      return static_cast<double>(block[i]) * static_cast<double>(block[i]);
    };
    double energy = 0;
    for (size_t i = 0; i < m_window; ++i) energy += square(i);
    double later = energy;
    for (size_t lag = 0; lag < m_difference.size(); ++lag) {
      const double product =
          static_cast<double>(m_products[lag]) / static_cast<double>(m_fft.Size());
      m_difference[lag] = std::max(0.0, energy + later - 2 * product);
      if (lag + 1 < m_difference.size()) later += square(lag + m_window) - square(lag);
    }
    return energy;
  }

  // Where the minimum of the parabola through three neighbours lies.
  double Between(size_t lag) const {
    const double before = m_difference[lag - 1];
    const double after = m_difference[lag + 1];
    const double bend = before - 2 * m_difference[lag] + after;
    return bend > 0 ? (before - after) / (2 * bend) : 0;
  }

  int m_rate;
  size_t m_window;
  size_t m_least;
  size_t m_most;
  RealFft m_fft;
  std::vector<float> m_padded;  // Beyond a block there are always zeros.
  std::vector<float> m_products;
  std::vector<std::complex<float>> m_ofWindow;
  std::vector<std::complex<float>> m_ofBlock;
  std::vector<double> m_difference;
};

// The pitch of each block, 0 where it is not voiced.
struct Track {
  const char* fault = "";
  std::vector<double> pitches = {};
};

Track TrackPitch(std::span<const float> samples, int rate) {
  if (samples.empty()) return {.fault = kNoSamples};
  Yin yin(rate);
  if (samples.size() < yin.BlockSamples()) return {.fault = kTooShort};
  Track track;
  std::vector<double> energies;
  const size_t step = Samples(rate, kStep);
  for (size_t start = 0; start + yin.BlockSamples() <= samples.size(); start += step) {
    double energy = 0;
    const auto pitch = yin.Pitch(samples.subspan(start, yin.BlockSamples()), &energy);
    track.pitches.push_back(pitch.value_or(0));
    energies.push_back(energy);
  }
  const double loudest = *std::ranges::max_element(energies);
  if (!(loudest > 0)) return {.fault = kSilence};
  for (size_t i = 0; i < energies.size(); ++i) {
    if (energies[i] < kSofter * loudest) track.pitches[i] = 0;
  }
  return track;
}

Figure MedianOf(const std::vector<double>& values) {
  if (values.size() < kLeastVoiced) return Unknown("too little that has a pitch");
  return Known(Median(values));
}

}  // namespace

Figure MedianPitch(std::span<const float> samples, int rate) {
  Track track = TrackPitch(samples, rate);
  if (*track.fault != '\0') return Unknown(track.fault);
  std::erase(track.pitches, 0);
  return MedianOf(track.pitches);
}

Figure PitchCents(std::span<const float> reference, std::span<const float> output, int rate) {
  const Track wanted = TrackPitch(reference, rate);
  if (*wanted.fault != '\0') return Unknown(wanted.fault);
  const Track track = TrackPitch(output, rate);
  if (*track.fault != '\0') return Unknown(track.fault);
  std::vector<double> cents;
  for (size_t i = 0; i < track.pitches.size(); ++i) {
    const double pitch = wanted.pitches[i * wanted.pitches.size() / track.pitches.size()];
    if (pitch > 0 && track.pitches[i] > 0) {
      cents.push_back(1200 * std::log2(track.pitches[i] / pitch));
    }
  }
  return MedianOf(cents);
}

}  // namespace audio_measures
