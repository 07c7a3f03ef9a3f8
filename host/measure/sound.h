#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "audio_measures/compute.h"
#include "recording/recording.h"

namespace host {

// The samples of a recording as measures take them, one vector per channel.
struct MeasuredSound {
  int rate = 0;  // Hz
  std::vector<std::vector<float>> channels = {};
  float fullScale = 1;  // The largest value that the samples can have.

  // Valid for as long as this object stays as it is.
  audio_measures::Signal View() const;
};

// Thrown where a recording cannot be read: why, as what follows the name of the file.
struct UnreadableSound {
  std::string fault;
};

// A recording of a regular file that is open.
class OpenSound {
 public:
  // Opens what `stage` reads; `raw` is the form of samples without a header. Throws
  // UnreadableSound.
  OpenSound(const std::string& path, const std::optional<RawForm>& raw);
  ~OpenSound();
  OpenSound(const OpenSound&) = delete;
  OpenSound& operator=(const OpenSound&) = delete;

  const RecordingFormat& Format() const { return m_recording->Format(); }

  // The largest value that its samples can have: 1 - 2^(1 - bits) for integers.
  float FullScale() const;

  // All samples, brought to `rate` by libsoxr in its very high quality; 0 leaves them at their own.
  // Throws UnreadableSound.
  MeasuredSound ReadAll(int rate);

  // Passes on the interleaved samples block by block. Throws UnreadableSound.
  void ForEachBlock(const std::function<void(std::span<const float>)>& use);

 private:
  void ForEachDoubles(const std::function<void(std::span<const double>)>& use);

  FILE* m_file;
  std::unique_ptr<Recording> m_recording;
};

}  // namespace host
