#pragma once

#include "engine_api/common/audio_frame.h"

namespace desktop {

// Decides which blocks an effect can work on, and writes one line to the log at the first that it
// cannot: mono or stereo, 8 to 192 kHz.
class EffectGate {
 public:
  explicit EffectGate(const char* effect) : m_effect(effect) {}

  // A raw block. `sampleSize` is that of 16-bit samples in bits or in bytes: 16 or 2.
  bool Passes(const void* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize);

  // A frame; its samples must fit in it.
  bool Passes(const zuwebrtc::AudioFrame& frame);

  // Logs that there is no memory, once.
  void TellNoMemory();

 private:
  const char* m_effect;
  bool m_told = false;
};

}  // namespace desktop
