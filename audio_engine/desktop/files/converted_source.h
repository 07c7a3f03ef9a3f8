#pragma once

#include <memory>
#include <vector>

#include "desktop/devices/device_format.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/files/file_source.h"

namespace desktop {

// An audio file in another format, in time with the original: without the resampler's delay and
// without losing its end. Belongs to one thread at a time.
class ConvertedSource {
 public:
  // Returns null when the formats cannot be converted. Throws when there is no memory.
  static std::unique_ptr<ConvertedSource> Create(std::unique_ptr<FileSource> source,
                                                 DeviceFormat format);

  // The whole length in frames of the format, as far as the file tells.
  size_t Frames() const;

  // Reads the next `frames` frames; fewer at the end, and 0 after it.
  size_t Read(short* samples, size_t frames);

 private:
  ConvertedSource(std::unique_ptr<FileSource> source, DeviceFormat format);

  bool Refill();

  const std::unique_ptr<FileSource> m_source;
  const DeviceFormat m_format;
  // How many frames of the file are converted at once, and the block that holds them.
  const size_t m_blockFrames;
  Resampler m_resampler;
  std::vector<short> m_block;
  // Converted frames, of which those from m_at to m_end were not given yet.
  std::vector<short> m_converted;
  size_t m_at = 0;
  size_t m_end = 0;
  // How many frames of the resampler's delay are still to be left out.
  size_t m_toDrop;
  // Frames that were read from the file, and those that were made of them.
  size_t m_sourceRead = 0;
  size_t m_made = 0;
  // The file was read to its end.
  bool m_ended = false;
};

}  // namespace desktop
