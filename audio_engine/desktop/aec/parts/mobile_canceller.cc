#include "desktop/aec/parts/mobile_canceller.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

// This level takes about 6 dB of noise; a higher one would cost more speech than it takes noise.
constexpr int kNoiseLevel = 0;

// By how much noise suppression alone is late at 16 kHz.
constexpr size_t kNoiseLagSamples = 96;

// Even the weakest noise suppression takes about 1 dB of speech, which is given back.
constexpr float kSpeechGain = 1.1f;

// The energy of the upper half of a signal's band.
float UpperEnergy(const float* samples, size_t count) {
  float energy = 0;
  for (size_t i = 1; i < count; ++i) {
    const float step = samples[i] - samples[i - 1];
    energy += step * step;
  }
  return energy;
}

}  // namespace

bool MobileCanceller::Accepts(int rate) {
  return rate == 8000 || rate == 16000 || rate == 32000 || rate == 48000;
}

MobileCanceller::MobileCanceller(int rate)
    : m_frames(Size(rate / 100)),
      m_bands(Size(std::max(1, rate / 16000))),
      m_canceller(std::min(rate, 16000), EchoCanceller::Delay::kFound,
                  EchoCanceller::Suppressor::kPackaged),
      m_farSplit(m_bands, m_frames),
      m_farBands(m_frames),
      m_block(FramesPerBand()),
      m_in(2 * m_block.size()),
      m_out(m_block.size()),
      m_alignedFar(m_block.size()),
      m_alignedNear(m_block.size()),
      m_late(m_bands - 1, std::vector<int16_t>(2 * m_block.size())) {
  m_canceller.SetNoiseSuppression(kNoiseLevel);
}

void MobileCanceller::ProcessFar(const int16_t* block) {
  const size_t frames = FramesPerBand();
  if (m_bands > 1) {
    int16_t* bands[3];
    for (size_t band = 0; band < m_bands; ++band) bands[band] = &m_farBands[band * frames];
    m_farSplit.Analyse(block, bands);
    block = m_farBands.data();
  }
  std::copy(block, block + frames, m_block.begin());
  m_canceller.ProcessFar(m_block.data());
}

void MobileCanceller::SetStages(Stages stages) {
  using Suppression = EchoCanceller::Suppression;
  if (stages.newNlp != m_stages.newNlp) {
    m_canceller.SetSuppression(stages.newNlp ? Suppression::kHigh : Suppression::kModerate);
  }
  if (stages.aec != m_stages.aec) m_canceller.EnableCancellation(stages.aec);
  if (stages.ns != m_stages.ns) {
    m_canceller.SetNoiseSuppression(stages.ns ? kNoiseLevel : EchoCanceller::kNoNoiseSuppression);
  }
  m_stages = stages;
}

void MobileCanceller::ProcessNear(const int16_t* const* near, int16_t* const* out, Stages stages) {
  SetStages(stages);
  const size_t frames = FramesPerBand();
  std::copy(near[0], near[0] + frames, m_alignedNear.begin());
  std::copy(near[0], near[0] + frames, m_out.begin());
  m_canceller.ProcessNear(m_out.data());
  if (stages.ns) {
    for (float& sample : m_out) sample = std::clamp(kSpeechGain * sample, -32768.0f, 32767.0f);
  }
  std::transform(m_canceller.Far(), m_canceller.Far() + frames, m_alignedFar.begin(),
                 [](float sample) { return static_cast<int16_t>(sample); });

  std::copy(m_in.begin() + Offset(frames), m_in.end(), m_in.begin());
  std::copy(near[0], near[0] + frames, m_in.begin() + Offset(frames));
  const float gain = m_bands > 1 ? UpperGain() : 1;
  for (size_t band = 1; band < m_bands; ++band) ProcessUpperBand(band, near[band], out[band], gain);
  m_gain = gain;
  std::transform(m_out.begin(), m_out.end(), out[0],
                 [](float sample) { return static_cast<int16_t>(sample); });
}

// Returns by how many samples the lowest band comes out later than it went in.
size_t MobileCanceller::Lag() const {
  return m_stages.aec ? EchoCanceller::kLagSamples : m_stages.ns ? kNoiseLagSamples : 0;
}

// Returns by how much the upper half of the lowest band was turned down, taking account of the lag.
// The gain falls at once and rises by halves.
float MobileCanceller::UpperGain() {
  const size_t frames = FramesPerBand();
  const size_t lag = Lag();
  const float before = UpperEnergy(&m_in[frames - lag], frames);
  const float after = UpperEnergy(m_out.data(), frames);
  const float gain = after < before ? std::sqrt(after / before) : 1;
  return gain < m_gain ? gain : 0.5f * (gain + m_gain);
}

void MobileCanceller::ProcessUpperBand(size_t band, const int16_t* near, int16_t* out, float gain) {
  const size_t frames = FramesPerBand();
  const size_t lag = Lag();
  std::vector<int16_t>& late = m_late[band - 1];
  std::copy(late.begin() + Offset(frames), late.end(), late.begin());
  std::copy(near, near + frames, late.begin() + Offset(frames));
  for (size_t i = 0; i < frames; ++i) {
    const float part = static_cast<float>(i + 1) / static_cast<float>(frames);
    const float now = m_gain + part * (gain - m_gain);
    out[i] = static_cast<int16_t>(now * late[frames - lag + i]);
  }
}

}  // namespace desktop
