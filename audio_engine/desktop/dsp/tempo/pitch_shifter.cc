#include "desktop/dsp/tempo/pitch_shifter.h"

#include <algorithm>

#include "desktop/common/counts.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

PitchShifter::PitchShifter(double semitones, int rate, int channels)
    : m_channels(Size(channels)), m_block(kMaxEffectFrames * m_channels) {
  m_shifter.setSampleRate(Unsigned(rate));
  m_shifter.setChannels(Unsigned(channels));
  // Short enough that the level of a note does not tremble with the joins, long enough for two
  // periods of a low voice.
  m_shifter.setSetting(SETTING_SEQUENCE_MS, 40);
  m_shifter.setSetting(SETTING_SEEKWINDOW_MS, 15);
  m_shifter.setSetting(SETTING_OVERLAP_MS, 8);
  m_shifter.setPitchSemiTones(semitones);
  const int latency = m_shifter.getSetting(SETTING_INITIAL_LATENCY);
  m_latency = Size(latency);
  const std::vector<float> silence(m_latency * m_channels);
  m_shifter.putSamples(silence.data(), Unsigned(latency));
}

void PitchShifter::Process(float* const* rows, size_t frames) {
  float* block = m_block.data();
  for (size_t i = 0; i < frames; ++i) {
    for (size_t channel = 0; channel < m_channels; ++channel) *block++ = rows[channel][i];
  }
  const unsigned wanted = Unsigned(Count(frames));
  m_shifter.putSamples(m_block.data(), wanted);
  const unsigned ready = m_shifter.receiveSamples(m_block.data(), wanted);
  // Because of the silence that was put first, `ready` is all of them. Should the library hold some
  // back nevertheless, silence takes their place.
  std::fill(m_block.begin() + Offset(ready * m_channels), m_block.end(), 0.0F);
  block = m_block.data();
  for (size_t i = 0; i < frames; ++i) {
    for (size_t channel = 0; channel < m_channels; ++channel) rows[channel][i] = *block++;
  }
}

}  // namespace desktop
