#include "desktop/effects/voice/overdrive.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {
namespace {

// How fast the measured level of a voice falls, in ms.
constexpr double kLevelFallMs = 50;

uint32_t FactorAt(int rate) { return rate <= 48000 ? 8 : 2; }

}  // namespace

Overdrive::Overdrive(double drive, int rate)
    : m_factor(FactorAt(rate)),
      m_drive(static_cast<float>(drive)),
      m_full(1 / std::tanh(m_drive)),
      m_fall(static_cast<float>(std::exp(-1000 / (kLevelFallMs * rate * Real(m_factor))))),
      m_up(1, FactorAt(rate)),
      m_down(FactorAt(rate), 1),
      m_slow(m_up.Taps() - 1 + kMaxEffectFrames),
      m_fast(m_down.Taps() - 1 + kMaxEffectFrames * m_factor) {}

size_t Overdrive::Latency() const { return m_up.Lag() / m_factor + m_down.Lag(); }

float Overdrive::Shape(float sample) {
  m_level = std::max(std::fabs(sample), m_level * m_fall);
  if (m_level < 1e-6F) return sample;
  return m_level * m_full * std::tanh(m_drive * sample / m_level);
}

void Overdrive::Process(float* samples, size_t frames) {
  const size_t slowPast = m_slow.size() - kMaxEffectFrames;
  const size_t fastPast = m_fast.size() - kMaxEffectFrames * m_factor;
  std::copy_n(samples, frames, m_slow.begin() + Offset(slowPast));
  for (size_t i = 0; i < frames; ++i) {
    for (size_t phase = 0; phase < m_factor; ++phase) {
      const float sample = m_up.At(&m_slow[i], Unsigned(Count(phase)));
      m_fast[fastPast + i * m_factor + phase] = Shape(sample);
    }
  }
  for (size_t i = 0; i < frames; ++i) samples[i] = m_down.At(&m_fast[i * m_factor], 0);
  std::copy_n(m_slow.begin() + Offset(frames), slowPast, m_slow.begin());
  std::copy_n(m_fast.begin() + Offset(frames * m_factor), fastPast, m_fast.begin());
}

}  // namespace desktop
