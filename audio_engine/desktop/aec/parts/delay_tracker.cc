#include "desktop/aec/parts/delay_tracker.h"

#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

constexpr float kSmoothing = 0.9f;  // Of the cross spectrum, per look of 100 ms.
constexpr float kSureScore = 8.0f;  // From here on the peak of one look is believed.

// Below, an end is silent: nothing is learnt of its noise. In steps of a 16-bit sample.
constexpr float kLeastFarRms = 5.0f;
constexpr float kLeastNearRms = 2.0f;

// Where loudspeakers play nothing and converters let nothing through, phases mean nothing.
constexpr float kLowestHz = 100.0f;
constexpr float kHighestOfHalfRate = 0.95f;

size_t Size(int count) { return static_cast<size_t>(count); }

}  // namespace

DelayTracker::DelayTracker(int rate, int maxDelayMs)
    : m_window(rate == 8000 ? 8192 : 16384),
      m_hop(rate / 10),
      m_maxDelay(std::clamp(maxDelayMs, 1, 500) * rate / 1000),
      m_samplesPerMs(rate / 1000),
      m_fft(2 * m_window),
      m_next(m_hop),
      m_block(Size(m_fft.Size())),
      m_farSpectrum(Size(m_fft.Bins())),
      m_nearSpectrum(Size(m_fft.Bins())),
      m_cross(Size(m_fft.Bins())) {
  m_far.ring.resize(Size(2 * m_window));
  m_near.ring.resize(Size(2 * m_window));
}

void DelayTracker::Add(End& end, End& other, const short* samples, int count) {
  while (count > 0) {
    const int piece = std::min(count, m_hop);
    AddPiece(end, samples, piece);
    while (end.count - other.count > m_window - m_hop) {
      static constexpr short kSilence[80] = {};
      AddPiece(other, kSilence, 80);
    }
    samples += piece;
    count -= piece;
    while (std::min(end.count, other.count) >= m_next) Analyse();
  }
}

void DelayTracker::AddPiece(End& end, const short* samples, int count) {
  for (int i = 0; i < count; ++i) {
    end.ring[static_cast<size_t>(end.count++) % end.ring.size()] = samples[i];
  }
}

// False when the end is silent.
bool DelayTracker::Transform(const End& end, float leastRms, Spectrum& spectrum) {
  const auto size = static_cast<int64_t>(end.ring.size());
  float energy = 0;
  for (int i = 0; i < m_window; ++i) {
    const float sample = end.ring[static_cast<size_t>((m_next - m_window + i + size) % size)];
    m_block[Size(i)] = sample;
    energy += sample * sample;
  }
  if (energy < leastRms * leastRms * static_cast<float>(m_window)) return false;
  std::fill(m_block.begin() + m_window, m_block.end(), 0.0f);
  m_fft.Forward(m_block.data(), spectrum.data());
  return true;
}

void DelayTracker::Analyse() {
  const bool sounding = Transform(m_far, kLeastFarRms, m_farSpectrum) &&
                        Transform(m_near, kLeastNearRms, m_nearSpectrum);
  m_next += m_hop;
  if (!sounding) return;

  for (size_t bin = 0; bin < m_cross.size(); ++bin) {
    const std::complex<float> cross = std::conj(m_farSpectrum[bin]) * m_nearSpectrum[bin];
    m_cross[bin] = kSmoothing * m_cross[bin] + (1 - kSmoothing) * cross;
  }
  FindPeak();
}

void DelayTracker::FindPeak() {
  const auto bins = static_cast<float>(m_cross.size() - 1);
  const float binsPerHz = bins / (500.0f * static_cast<float>(m_samplesPerMs));
  const auto lowest = static_cast<size_t>(kLowestHz * binsPerHz);
  const auto highest = static_cast<size_t>(kHighestOfHalfRate * bins);
  for (size_t bin = 0; bin < m_cross.size(); ++bin) {
    const float size = std::abs(m_cross[bin]);
    const bool used = bin >= lowest && bin <= highest && size > 0;
    m_farSpectrum[bin] = used ? m_cross[bin] / size : 0.0f;
  }
  m_fft.Inverse(m_farSpectrum.data(), m_block.data());

  float highestPeak = 0;
  float energy = 0;
  int at = 0;
  for (int delay = 0; delay < m_maxDelay; ++delay) {
    const float height = std::abs(m_block[Size(delay)]);
    energy += height * height;
    if (height > highestPeak) {
      highestPeak = height;
      at = delay;
    }
  }
  if (energy <= 0) return;

  const float score = highestPeak / std::sqrt(energy / static_cast<float>(m_maxDelay));
  if (score > kSureScore) m_delayMs = (at + m_samplesPerMs / 2) / m_samplesPerMs;
  ++m_scores[std::min(m_scores.size() - 1, static_cast<size_t>(10 * score))];
  ++m_looks;
}

float DelayTracker::MedianScore() const {
  int before = 0;
  for (size_t tenth = 0; tenth < m_scores.size(); ++tenth) {
    before += m_scores[tenth];
    if (2 * before > m_looks) return (static_cast<float>(tenth) + 0.5f) / 10;
  }
  return 0;
}

}  // namespace desktop
