#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "desktop/devices/device_format.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/files/file_writer.h"

namespace desktop {

// Writes interleaved 16-bit audio into a file: AAC (LC, ADTS) or WAVE by the ending of the name,
// ".aac" or ".wav" in any case. The file is whole after every 200 ms of audio. Not for a device's
// thread. Belongs to one thread at a time.
class FileSink {
 public:
  // Returns whether a name ends as one of the two kinds, and this build has its codec.
  static bool IsWritable(const char* name);

  // append: whether to go on after the last whole frame of a file that is there, in that file's
  // format, whatever `format` is. Returns null, with one line in the log, when the file cannot be
  // written.
  static std::unique_ptr<FileSink> Create(const char* name, DeviceFormat format, bool append);

  // Writes by `writer`, whose file has that name.
  FileSink(const char* name, DeviceFormat format, std::unique_ptr<FileWriter> writer);

  // Finishes.
  ~FileSink();

  const std::string& Name() const { return m_name; }

  // Takes frames of `format`. Returns false once something could not be written, of which the log
  // has one line; nothing more is written then.
  bool Write(const short* samples, size_t frames);

  // Writes the rest. Returns false when anything could not be written.
  bool Finish();

 private:
  bool Note(bool good);

  static constexpr size_t kMaxBlockFrames = 4800;

  const std::string m_name;
  // Of what is given to Write.
  const DeviceFormat m_format;
  std::unique_ptr<FileWriter> m_writer;
  // Null when the file has the same format.
  std::unique_ptr<Resampler> m_resampler;
  std::vector<short> m_converted;
  // Frames since the last Flush.
  size_t m_unflushed = 0;
  bool m_good = true;
};

}  // namespace desktop
