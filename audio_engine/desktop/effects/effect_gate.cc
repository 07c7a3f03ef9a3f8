#include "desktop/effects/effect_gate.h"

#include <utility>

#include "desktop/dsp/sample_blocks.h"
#include "desktop/platform/log.h"

namespace desktop {

bool EffectGate::Passes(const void* samples, int samplesPerChannel, int sampleRate, int channels,
                        int sampleSize) {
  if (samples != nullptr && samplesPerChannel >= 0 && sampleRate >= 8000 && sampleRate <= 192000 &&
      channels >= 1 && channels <= kMaxEffectChannels && (sampleSize == 16 || sampleSize == 2)) {
    return true;
  }
  if (!std::exchange(m_told, true)) {
    LogRefusal("%s: cannot process %d samples x %d channels at %d Hz, sample size %d", m_effect,
               samplesPerChannel, channels, sampleRate, sampleSize);
  }
  return false;
}

bool EffectGate::Passes(const zuwebrtc::AudioFrame& frame) {
  const bool fits = frame.samples_per_channel_ <=
                        zuwebrtc::AudioFrame::kMaxDataSizeSamples / kMaxEffectChannels ||
                    (frame.num_channels_ == 1 &&
                     frame.samples_per_channel_ <= zuwebrtc::AudioFrame::kMaxDataSizeSamples);
  return Passes(fits ? frame.data_ : nullptr, frame.samples_per_channel_, frame.sample_rate_hz_,
                frame.num_channels_, 16);
}

void EffectGate::TellNoMemory() {
  if (!std::exchange(m_told, true)) LogRefusal("%s: no memory", m_effect);
}

}  // namespace desktop
