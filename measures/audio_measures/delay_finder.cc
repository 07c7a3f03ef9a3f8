#include "audio_measures/delay_finder.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace audio_measures {

namespace {

constexpr uint64_t kShortest = 4096;  // Samples of a transform.
constexpr float kUpsideDown = 0.999F;
constexpr float kWhitening = 1e-3F;  // Bins this far below the mean count half.

size_t TransformSize(uint64_t lags, uint64_t frames) {
  const uint64_t whole = frames + lags;
  return std::bit_ceil(std::max(kShortest, std::min(4 * lags, whole)));
}

// Of samples of any size no square overflows in double precision, so that the care of std::abs is
// not needed.
float Magnitude(const std::complex<float>& bin) {
  const auto real = static_cast<double>(bin.real());
  const auto imaginary = static_cast<double>(bin.imag());
  return static_cast<float>(std::sqrt(real * real + imaginary * imaginary));
}

}  // namespace

DelayFinder::DelayFinder(int64_t least, int64_t most, uint64_t frames)
    : m_least(least),
      m_lags(static_cast<size_t>(most - least + 1)),
      m_fft(TransformSize(m_lags, frames)),
      m_referenceFrames(m_fft.Size() - m_lags + 1),
      m_padded(m_fft.Size()),
      m_reference(m_fft.Bins()),
      m_signal(m_fft.Bins()),
      m_cross(m_fft.Bins()) {}

void DelayFinder::Add(std::span<const float> reference, std::span<const float> signal) {
  std::ranges::copy(reference, m_padded.begin());
  m_fft.Forward(m_padded, m_reference);
  m_fft.Forward(signal, m_signal);
  for (size_t i = 0; i < m_cross.size(); ++i) {
    m_cross[i] += CrossBin(m_reference[i], m_signal[i]);
  }
}

std::optional<DelayFinder::Peak> DelayFinder::Find() const {
  double mean = 0;
  for (const auto& bin : m_cross) mean += static_cast<double>(Magnitude(bin));
  mean /= static_cast<double>(m_cross.size());
  if (!(mean > 0) || !std::isfinite(mean)) return std::nullopt;

  const auto floor = static_cast<float>(mean) * kWhitening;
  std::vector<std::complex<float>> white(m_cross.size());
  for (size_t i = 1; i + 1 < white.size(); ++i) {
    white[i] = m_cross[i] / (Magnitude(m_cross[i]) + floor);
  }
  return PeakOf(white);
}

std::optional<DelayFinder::Peak> DelayFinder::FindUnweighted() const {
  std::vector<std::complex<float>> cross = m_cross;
  cross.front() = cross.back() = 0;
  return PeakOf(cross);
}

std::optional<DelayFinder::Peak> DelayFinder::PeakOf(
    std::span<const std::complex<float>> cross) const {
  std::vector<float> correlation(m_fft.Size());
  m_fft.Inverse(cross, correlation);

  Peak peak;
  double squares = 0;
  float highest = 0;
  float greatest = 0;  // Height, as it is weighed below.
  for (size_t i = 0; i < m_lags; ++i) {
    const float value = correlation[i];
    squares += static_cast<double>(value) * static_cast<double>(value);
    // Of a tone the peaks upside down are as high as the others.
    const float height = value < 0 ? -value * kUpsideDown : value;
    if (height <= greatest) continue;
    greatest = height;
    highest = value;
    peak.lag = m_least + static_cast<int64_t>(i);
  }
  if (!(squares > 0) || !std::isfinite(squares)) return std::nullopt;
  const auto at = static_cast<size_t>(peak.lag - m_least);
  const auto largest = [&correlation](size_t from, size_t to) {
    float value = 0;
    for (size_t i = from; i < to; ++i) value = std::max(value, std::fabs(correlation[i]));
    return value;
  };
  const float next = std::max(largest(0, at - std::min(at, kApart)),
                              largest(std::min(m_lags, at + kApart + 1), m_lags));
  peak.next = static_cast<double>(next / std::fabs(highest));
  peak.polarity = highest < 0 ? -1 : 1;
  peak.sharpness =
      std::fabs(static_cast<double>(highest)) / std::sqrt(squares / static_cast<double>(m_lags));
  return peak;
}

}  // namespace audio_measures
