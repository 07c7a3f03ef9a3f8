#pragma once

#include <memory>

#include "../common/visibility.h"

// A reverberation over raw blocks of mono or stereo samples at 8 to 192 kHz. Belongs to one thread
// at a time.
class ENGINE_API CAudioDspProcessor {
 public:
  CAudioDspProcessor();
  ~CAudioDspProcessor();
  CAudioDspProcessor(const CAudioDspProcessor&) = delete;
  CAudioDspProcessor& operator=(const CAudioDspProcessor&) = delete;

  // Switches the reverberation, over 20 ms; it is off at first. It is that of a hall: 2.1 s to fall
  // by 60 dB, starting 20 ms after the sound, which goes through at -2 dB with a tail of 14 dB less
  // energy. Switching it off drops the tail.
  void SetReverbExEnable(bool enabled);

  // Processes a block of interleaved signed samples in place; the sound is not delayed, and what
  // goes beyond full scale is clipped. `sampleSize`: 16 (bits) or 2 (bytes). Returns the samples
  // per channel now in the buffer, always as many as came. Another size, format or rate leaves the
  // block alone, with one line in the log.
  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels, int sampleSize);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
