#pragma once

#include <cstdint>
#include <memory>

#include "../common/audio_frame.h"
#include "../common/visibility.h"

// An equaliser over frames of mono or stereo at 8 to 192 kHz. Belongs to one thread at a time.
class ENGINE_API AudioEffectModule {
 public:
  AudioEffectModule();
  ~AudioEffectModule();
  AudioEffectModule(const AudioEffectModule&) = delete;
  AudioEffectModule& operator=(const AudioEffectModule&) = delete;

  // Switches the equaliser, over 20 ms; it is off at first and then changes no bit.
  void SetEqualizerEnable(bool enabled);

  // Copies the gains of the eleven bands (effect_parameters.h). `smooth`: the change fades in over
  // 20 ms; else it is whole at the next frame, which may click in a sound that is playing.
  void SetEqGains(float* gains, bool smooth);

  // Equalises the frame in place and returns its samples per channel; a sample beyond full scale is
  // clipped. A frame whose format or length cannot be is left alone, with 0 as the result and one
  // line in the log.
  uint32_t Process(zuwebrtc::AudioFrame& frame);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
