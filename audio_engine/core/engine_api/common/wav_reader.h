#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "visibility.h"

namespace zuwebrtc {

// Reads the samples of a 16-bit PCM WAVE file from start to end. A file that is missing, or that is
// no such WAVE, reads as one with no samples, no channels and rate 0. Belongs to one thread at a
// time.
class ENGINE_API WavReader {
 public:
  // Opens `filename` and finds its samples; a failure is one line in the engine's log.
  explicit WavReader(const std::string& filename);
  ~WavReader();  // Closes the file.
  WavReader(const WavReader&) = delete;
  WavReader& operator=(const WavReader&) = delete;

  // Reads up to `count` interleaved samples (of all channels together) and returns how many there
  // were: fewer at the end of the file, 0 after it. Floats keep the 16-bit range, -32768 to 32767.
  unsigned ReadSamples(unsigned count, short* out);
  unsigned ReadSamples(unsigned count, float* out);

  int sample_rate() const { return sample_rate_; }  // Hz.
  int num_channels() const { return num_channels_; }
  uint32_t num_samples() const { return num_samples_; }  // Of all channels together.

 private:
  int sample_rate_ = 0;
  int num_channels_ = 0;
  uint32_t num_samples_ = 0;
  uint32_t num_samples_remaining_ = 0;
  FILE* file_handle_ = nullptr;
};

}  // namespace zuwebrtc
