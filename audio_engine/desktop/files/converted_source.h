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
  // Null when the formats cannot be converted. Throws when there is no memory.
  static std::unique_ptr<ConvertedSource> Create(std::unique_ptr<FileSource> source,
                                                 DeviceFormat format);

  // The whole length in frames of the format, as far as the file tells.
  uint64_t Frames() const;

  // Reads the next `frames` frames; fewer at the end, and 0 after it.
  size_t Read(short* samples, size_t frames);

 private:
  ConvertedSource(std::unique_ptr<FileSource> source, DeviceFormat format);

  bool Refill();

  const std::unique_ptr<FileSource> m_source;
  const DeviceFormat m_format;
  const size_t m_pieceFrames;  // Of the file, converted at once.
  Resampler m_resampler;
  std::vector<short> m_piece;      // Of the file.
  std::vector<short> m_converted;  // From frame m_at to m_end not yet given.
  size_t m_at = 0;
  size_t m_end = 0;
  size_t m_toDrop;            // Frames: the resampler's delay.
  uint64_t m_sourceRead = 0;  // Frames of the file
  uint64_t m_made = 0;        // and those that were made of them.
  bool m_ended = false;       // The file was.
};

}  // namespace desktop
