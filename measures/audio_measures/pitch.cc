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

constexpr double kWindow = 0.025;  // s
constexpr double kStep = 0.01;     // s
constexpr double kLowest = 60;     // Hz
constexpr double kHighest = 1000;  // Hz
constexpr double kThreshold = 0.1;
constexpr double kSofter = 1e-3;  // 30 dB below the loudest.
constexpr size_t kLeastVoiced = 10;

size_t Samples(double seconds, int rate) {
  return static_cast<size_t>(std::lround(seconds * rate));
}

class Yin {
 public:
  explicit Yin(int rate)
      : m_rate(rate),
        m_window(Samples(kWindow, rate)),
        m_least(static_cast<size_t>(rate / kHighest)),
        m_most(Samples(1 / kLowest, rate) + 2),
        m_fft(std::bit_ceil(BlockSamples())),
        m_padded(m_fft.Size()),
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
    if (lag == m_most || lag == 0) return std::nullopt;
    return m_rate / (static_cast<double>(lag) + Between(lag));
  }

 private:
  // The squared difference of the window from the one `lag` samples later, for every lag.
  double Differences(std::span<const float> block) {
    std::ranges::copy(block, m_padded.begin());
    std::fill(m_padded.begin() + static_cast<std::ptrdiff_t>(block.size()), m_padded.end(), 0.0F);
    m_fft.Forward(m_padded, m_ofBlock);
    std::fill(m_padded.begin() + static_cast<std::ptrdiff_t>(m_window), m_padded.end(), 0.0F);
    m_fft.Forward(m_padded, m_ofWindow);
    for (size_t i = 0; i < m_ofBlock.size(); ++i) {
      m_ofBlock[i] = CrossBin(m_ofWindow[i], m_ofBlock[i]);
    }
    m_fft.Inverse(m_ofBlock, m_padded);
    const auto square = [&](size_t i) {
      return static_cast<double>(block[i]) * static_cast<double>(block[i]);
    };
    double energy = 0;
    for (size_t i = 0; i < m_window; ++i) energy += square(i);
    double later = energy;
    for (size_t lag = 0; lag < m_difference.size(); ++lag) {
      const double product = static_cast<double>(m_padded[lag]) / static_cast<double>(m_fft.Size());
      m_difference[lag] = std::max(0.0, energy + later - 2 * product);
      if (lag + 1 < m_difference.size()) later += square(lag + m_window) - square(lag);
    }
    return energy;
  }

  // Where the minimum of the parabola through three neighbours lies, from -0.5 to 0.5.
  double Between(size_t lag) const {
    const double before = m_difference[lag - 1];
    const double after = m_difference[lag + 1];
    const double bend = before - 2 * m_difference[lag] + after;
    return bend > 0 ? std::clamp((before - after) / (2 * bend), -0.5, 0.5) : 0;
  }

  int m_rate;
  size_t m_window;
  size_t m_least;
  size_t m_most;
  RealFft m_fft;
  std::vector<float> m_padded;
  std::vector<std::complex<float>> m_ofWindow;
  std::vector<std::complex<float>> m_ofBlock;
  std::vector<double> m_difference;
};

struct Voiced {
  double pitch = 0;
  double energy = 0;
};

}  // namespace

Figure MedianPitch(std::span<const float> samples, int rate) {
  if (samples.empty()) return Unknown(kNoSamples);
  Yin yin(rate);
  if (samples.size() < yin.BlockSamples()) return Unknown(kTooShort);
  std::vector<Voiced> voiced;
  double loudest = 0;
  const size_t step = Samples(kStep, rate);
  for (size_t start = 0; start + yin.BlockSamples() <= samples.size(); start += step) {
    double energy = 0;
    const auto pitch = yin.Pitch(samples.subspan(start, yin.BlockSamples()), &energy);
    loudest = std::max(loudest, energy);
    if (pitch) voiced.push_back({*pitch, energy});
  }
  if (!(loudest > 0)) return Unknown(kSilence);
  std::vector<double> pitches;
  for (const Voiced& block : voiced) {
    if (block.energy >= kSofter * loudest) pitches.push_back(block.pitch);
  }
  if (pitches.size() < kLeastVoiced) return Unknown("too little that has a pitch");
  return Known(Median(pitches));
}

Figure PitchCents(std::span<const float> reference, std::span<const float> output, int rate) {
  const Figure wanted = MedianPitch(reference, rate);
  if (!wanted.value) return wanted;
  const Figure pitch = MedianPitch(output, rate);
  if (!pitch.value) return pitch;
  return Known(1200 * std::log2(*pitch.value / *wanted.value));
}

}  // namespace audio_measures
