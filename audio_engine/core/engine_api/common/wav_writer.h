#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "visibility.h"

namespace zuwebrtc {

// Writes a 16-bit PCM WAVE file with the canonical 44-byte header. A file that cannot be opened or
// written further takes all samples and keeps none, with one line in the engine's log. Samples wait
// in a stdio buffer, commonly of 4 KiB: a process that crashes or is killed loses what is in it.
// Belongs to one thread at a time.
class ENGINE_API WavWriter {
 public:
  // Truncates `filename`. sample_rate: Hz.
  WavWriter(const std::string& filename, int sample_rate, int num_channels);
  ~WavWriter();  // Finishes the header and closes the file.
  WavWriter(const WavWriter&) = delete;
  WavWriter& operator=(const WavWriter&) = delete;

  // Appends `count` interleaved samples (of all channels together). Floats are in the 16-bit range;
  // they are rounded to the nearest integer and limited to -32768..32767, a NaN is written as 0.
  void WriteSamples(const short* samples, unsigned count);
  void WriteSamples(const float* samples, unsigned count);

 private:
  int sample_rate_;
  int num_channels_;
  uint32_t num_samples_ = 0;  // Given so far.
  FILE* file_handle_ = nullptr;
};

}  // namespace zuwebrtc
