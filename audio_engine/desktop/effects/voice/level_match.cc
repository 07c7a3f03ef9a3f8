#include "desktop/effects/voice/level_match.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {
namespace {

// Over so many steps the levels are averaged, and for so many at the start the effect is taken to
// keep its level.
constexpr size_t kMemory = 300;
constexpr double kTrust = 10;

constexpr double kNear = 3;       // dB that are left as they are.
constexpr double kFarthest = 12;  // dB that are made up for at most.

// The share of the way that the gain goes in one step.
constexpr double kFollow = 0.1;

double Energy(const float* const* rows, size_t channels, size_t frame) {
  double sum = 0;
  for (size_t c = 0; c < channels; ++c) sum += double{rows[c][frame]} * rows[c][frame];
  return sum;
}

}  // namespace

LevelMatch::LevelMatch(int rate, size_t latency)
    : m_step(Size(rate / 100)),
      m_late((latency + m_step / 2) / m_step),
      m_in(m_late + kMaxEffectFrames / m_step + 2) {}

void LevelMatch::Listen(const float* const* rows, size_t channels, size_t frames) {
  for (size_t i = 0; i < frames; ++i) {
    m_inEnergy += Energy(rows, channels, i);
    if (++m_inFrames < m_step) continue;
    m_in[m_inSteps++ % m_in.size()] = m_inEnergy;
    m_inFrames = 0;
    m_inEnergy = 0;
  }
}

void LevelMatch::Process(float* const* rows, size_t channels, size_t frames) {
  for (size_t i = 0; i < frames; ++i) {
    m_outEnergy += Energy(rows, channels, i);
    m_gain += m_growth;
    for (size_t c = 0; c < channels; ++c) rows[c][i] *= static_cast<float>(m_gain);
    if (++m_outFrames < m_step) continue;
    m_outFrames = 0;
    EndStep();
    m_outEnergy = 0;
  }
}

void LevelMatch::EndStep() {
  const double in = m_outSteps < m_late ? 0 : m_in[(m_outSteps - m_late) % m_in.size()];
  ++m_outSteps;
  const double steps = Real(std::min(m_outSteps, kMemory));
  m_meanIn += (in - m_meanIn) / steps;
  m_meanOut += (m_outEnergy - m_meanOut) / steps;
  const double trust = kTrust / steps;
  const double ratio = (m_meanOut + trust * m_meanIn + 1e-12) / ((1 + trust) * m_meanIn + 1e-12);
  const double away = 10 * std::log10(ratio);
  const double beyond = std::clamp(away - std::clamp(away, -kNear, kNear), -kFarthest, kFarthest);
  m_growth = kFollow * (FromDecibels(-beyond) - m_gain) / Real(m_step);
}

}  // namespace desktop
