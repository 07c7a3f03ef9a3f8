#pragma once

#include <memory>

#include "../common/visibility.h"

// Suppresses background noise in speech, 10 ms at a time, from 8 to 48 kHz (44.1 kHz included).
// Each channel is cleaned on its own; digital silence stays silent. What comes out lags what went
// in by 10 ms in both modes, exactly 80 samples per channel at 8 kHz; by 20 ms where a block is no
// whole number of frames. Belongs to one thread at a time.
class ENGINE_API CAudioDenoise {
 public:
  // sampleRate in Hz, in normal mode. A rate outside 4 to 192 kHz, or channels outside 1 to 64:
  // blocks pass unchanged, with one line in the log.
  CAudioDenoise(int sampleRate, int channels);
  ~CAudioDenoise();
  CAudioDenoise(const CAudioDenoise&) = delete;
  CAudioDenoise& operator=(const CAudioDenoise&) = delete;

  // Light mode lowers the noise by at most 9 dB instead of 20: the background stays audible and
  // natural, and speech is touched less. May be called at any time, with no gap and no click.
  void EnableLightDenoise(bool enable);

  // Cleans one block of interleaved samples in place: sampleRate * channels * 10 / 1000 samples,
  // truncated, and never one more. Where that is no whole number of frames (22050 Hz stereo: 441
  // samples) the channels go on in turn in the next block.
  void Process(short* samples);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
