#include "desktop/dsp/tempo/pitch_shifter.h"

#include <algorithm>

#include "desktop/dsp/sample_pieces.h"

namespace desktop {

PitchShifter::PitchShifter(double semitones, int rate, int channels)
    : m_channels(channels), m_block(static_cast<size_t>(kPieceFrames * channels)) {
  m_shifter.setSampleRate(static_cast<unsigned>(rate));
  m_shifter.setChannels(static_cast<unsigned>(channels));
  m_shifter.setPitchSemiTones(semitones);
  m_latency = m_shifter.getSetting(SETTING_INITIAL_LATENCY);
  const std::vector<float> silence(static_cast<size_t>(m_latency * channels));
  m_shifter.putSamples(silence.data(), static_cast<unsigned>(m_latency));
}

void PitchShifter::Process(float* const* rows, int frames) {
  float* block = m_block.data();
  for (int i = 0; i < frames; ++i) {
    for (int channel = 0; channel < m_channels; ++channel) *block++ = rows[channel][i];
  }
  const auto wanted = static_cast<unsigned>(frames);
  m_shifter.putSamples(m_block.data(), wanted);
  const unsigned ready = m_shifter.receiveSamples(m_block.data(), wanted);
  // The silence put first makes `ready` all of them; should the library hold some back
  // nevertheless, silence stands in.
  std::fill(m_block.begin() + static_cast<std::ptrdiff_t>(ready) * m_channels, m_block.end(), 0.0F);
  block = m_block.data();
  for (int i = 0; i < frames; ++i) {
    for (int channel = 0; channel < m_channels; ++channel) rows[channel][i] = *block++;
  }
}

}  // namespace desktop
