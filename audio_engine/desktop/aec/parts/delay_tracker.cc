#include "desktop/aec/parts/delay_tracker.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

// How much of the cross spectrum stays from one look to the next, which comes 100 ms later.
constexpr float kSmoothing = 0.9f;

// The least score at which the peak of a single look is believed.
constexpr float kSureScore = 8.0f;

// An end whose RMS, on the scale of 16-bit samples, is less than this is silent: nothing is learnt
// from its noise.
constexpr float kMinFarRms = 5.0f;
constexpr float kMinNearRms = 2.0f;

// Where loudspeakers play nothing and converters let nothing through, phases mean nothing.
constexpr float kLowestHz = 100.0f;
constexpr float kHighestOfHalfRate = 0.95f;

}  // namespace

DelayTracker::DelayTracker(int rate, int maxDelayMs)
    : m_window(rate == 8000 ? 8192 : 16384),
      m_hop(Size(rate / 10)),
      m_maxDelay(Size(std::clamp(maxDelayMs, 1, 500) * rate / 1000)),
      m_samplesPerMs(Size(rate / 1000)),
      m_fft(2 * m_window),
      m_next(m_hop),
      m_block(m_fft.Size()),
      m_farSpectrum(m_fft.Bins()),
      m_nearSpectrum(m_fft.Bins()),
      m_cross(m_fft.Bins()) {
  m_far.ring.resize(2 * m_window);
  m_near.ring.resize(2 * m_window);
}

void DelayTracker::AddFar(const short* samples, size_t count) {
  Add(m_far, m_near, samples, count);
  NoteLead();
}

void DelayTracker::AddNear(const short* samples, size_t count) {
  Add(m_near, m_far, samples, count);
  NoteLead();
  Pair();
}

void DelayTracker::Add(End& end, End& other, const short* samples, size_t count) {
  end.heard += count;
  while (count > 0) {
    const size_t block = std::min(count, m_hop);
    AddBlock(end, samples, block);
    if (end.count > other.count + (m_window - m_hop)) {
      AddSilence(other, end.count - other.count - (m_window - m_hop));
    }
    samples += block;
    count -= block;
    while (std::min(end.count, other.count) >= m_next) Analyse();
  }
}

void DelayTracker::AddSilence(End& end, size_t count) {
  static constexpr short kSilence[80] = {};
  while (count > 0) {
    const size_t block = std::min(count, std::size(kSilence));
    AddBlock(end, kSilence, block);
    count -= block;
  }
}

void DelayTracker::NoteLead() {
  const ptrdiff_t lead = Offset(m_near.count) - Offset(m_far.count);
  m_leastLead = std::min(m_leastLead, lead);
  m_mostLead = std::max(m_mostLead, lead);
}

// Ends that both go on but stay apart are those of which one has stood still. What is missing at
// that one was silence. The far end comes first, so that after the near end both are equally long.
void DelayTracker::Pair() {
  const size_t second = 10 * m_hop;
  if (std::min(m_far.heard, m_near.heard) < second) return;
  const ptrdiff_t lead = Offset(m_near.count) - Offset(m_far.count);
  if (m_leastLead >= Offset(m_hop)) AddSilence(m_far, Size(lead));
  if (m_mostLead <= -Offset(m_hop)) AddSilence(m_near, Size(-lead));
  while (std::min(m_far.count, m_near.count) >= m_next) Analyse();
  m_far.heard = 0;
  m_near.heard = 0;
  m_leastLead = std::numeric_limits<ptrdiff_t>::max();
  m_mostLead = std::numeric_limits<ptrdiff_t>::min();
}

void DelayTracker::AddBlock(End& end, const short* samples, size_t count) {
  for (size_t i = 0; i < count; ++i) end.ring[end.count++ % end.ring.size()] = samples[i];
}

// Returns false when the end is silent.
bool DelayTracker::Transform(const End& end, float leastRms, Spectrum& spectrum) {
  // Before the first whole window, what is looked at starts in the ring's zeros.
  const size_t first = m_next + end.ring.size() - m_window;
  float energy = 0;
  for (size_t i = 0; i < m_window; ++i) {
    const float sample = end.ring[(first + i) % end.ring.size()];
    m_block[i] = sample;
    energy += sample * sample;
  }
  if (energy < leastRms * leastRms * static_cast<float>(m_window)) return false;
  std::fill(m_block.begin() + Offset(m_window), m_block.end(), 0.0f);
  m_fft.Forward(m_block.data(), spectrum.data());
  return true;
}

void DelayTracker::Analyse() {
  const bool sounding =
      Transform(m_far, kMinFarRms, m_farSpectrum) && Transform(m_near, kMinNearRms, m_nearSpectrum);
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
  size_t at = 0;
  for (size_t delay = 0; delay < m_maxDelay; ++delay) {
    const float height = std::abs(m_block[delay]);
    energy += height * height;
    if (height > highestPeak) {
      highestPeak = height;
      at = delay;
    }
  }
  if (energy <= 0) return;

  const float score = highestPeak / std::sqrt(energy / static_cast<float>(m_maxDelay));
  if (score > kSureScore) m_delayMs = Count((at + m_samplesPerMs / 2) / m_samplesPerMs);
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
