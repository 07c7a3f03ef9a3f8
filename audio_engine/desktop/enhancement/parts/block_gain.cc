#include "desktop/enhancement/parts/block_gain.h"

#include <algorithm>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/platform/log.h"

namespace desktop {

namespace {

bool Accepts(int rate, int channels) {
  return rate >= 8000 && rate <= 48000 && (channels == 1 || channels == 2);
}

}  // namespace

BlockGain::BlockGain(int rate, int channels)
    : m_samples(Accepts(rate, channels) ? Size(rate * channels / 100) : 0),
      m_samplesPerSecond(Accepts(rate, channels) ? rate * channels : 1),
      m_level(m_samplesPerSecond, LevelControl::Settings()),
      m_block(m_samples) {
  if (m_samples == 0) LogRefusal("no gain control for %d Hz, %d channels", rate, channels);
}

void BlockGain::Enable(bool on) {
  if (on && !m_on) m_level = LevelControl(m_samplesPerSecond, LevelControl::Settings());
  m_on = on;
}

void BlockGain::Process(short* samples, bool learn) {
  if (!m_on || m_samples == 0) return;
  std::copy_n(samples, m_samples, m_block.begin());
  m_level.Process(m_block.data(), m_samples, learn);
  std::transform(m_block.begin(), m_block.end(), samples, ToSample);
}

}  // namespace desktop
