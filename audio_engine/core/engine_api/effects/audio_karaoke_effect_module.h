#pragma once

#include <cstdint>
#include <memory>

#include "../common/audio_frame.h"
#include "../common/visibility.h"
#include "effect_parameters.h"

// What a karaoke voice goes through, mono or stereo at 8 to 192 kHz: equaliser, reverberation,
// compressor, limiter, in this order and in floats, so that nothing clips ahead of the limiter. All
// four are off at first. Belongs to one thread at a time.
class ENGINE_API AudioKaraokeEffectModule {
 public:
  AudioKaraokeEffectModule();
  ~AudioKaraokeEffectModule();
  AudioKaraokeEffectModule(const AudioKaraokeEffectModule&) = delete;
  AudioKaraokeEffectModule& operator=(const AudioKaraokeEffectModule&) = delete;

  // The compressor: from -15 dBFS on at 2:1, attack 5 ms, release 120 ms. It has no make-up gain.
  void EnableDrc(bool enabled);

  // Whether equaliser and reverberation take part at all; true at first. False takes both out of
  // the chain and keeps their switches and settings.
  void EnableEqReverb(bool enabled);

  void SetEqualizerEnable(bool enabled);
  // As AudioEffectModule::SetEqGains.
  void SetEqGains(float* gains, bool smooth);

  void EnableReverbFv3(bool enabled);
  void SetReverbFv3Param(NreverbFv3Parameter parameter);

  // The limiter delays the sound by its look-ahead, rounded to whole samples; with it off the chain
  // has no delay.
  void EnableLimiter(bool enabled);
  void SetLimiterParameter(LimiterParameter parameter);

  // Processes the frame in place and returns its samples per channel: as many come out as went in,
  // from the first frame on. What is beyond full scale at the end is clipped. A frame whose format
  // or length cannot be is left alone, with 0 as the result and one line in the log.
  uint32_t Process(zuwebrtc::AudioFrame& frame);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
