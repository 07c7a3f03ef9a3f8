#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "desktop/devices/audio_device.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/files/file_source.h"

namespace desktop {

// Bytes that come in pieces of whole frames, to an open file; whoever reads the file, also after
// this process was killed, finds whole frames.
class FrameWriter {
 public:
  virtual ~FrameWriter() = default;

  virtual DeviceFormat Format() const = 0;

  // Takes frames of that format. They may stay here until Flush. No line goes to the log when they
  // cannot be coded.
  virtual void Add(const short* samples, size_t frames) = 0;

  // Brings to the file what is whole. False when it does not fit, which leaves the file whole.
  virtual bool Flush() = 0;

  // Codes what is left, and flushes.
  virtual bool Finish() = 0;
};

// Writes interleaved 16-bit audio into a file: AAC (LC, ADTS) or WAVE by the ending of the name,
// ".aac" or ".wav" in any case. The file is whole after every 200 ms of audio. Not for a device's
// thread. Belongs to one thread at a time.
class FileSink {
 public:
  // Whether a name ends as one of the two kinds, and this build has its codec.
  static bool IsWritable(const char* name);

  // append: goes on after the last whole frame of a file that is there, in that file's format,
  // whatever `format` is. Null, with one line in the log, when the file cannot be written.
  static std::unique_ptr<FileSink> Create(const char* name, DeviceFormat format, bool append);

  // For any writer of that name.
  FileSink(const char* name, DeviceFormat format, std::unique_ptr<FrameWriter> writer);

  ~FileSink();  // Finishes.

  const std::string& Name() const { return m_name; }

  // False, after one line in the log, once something could not be written; nothing more is then.
  bool Write(const short* samples, size_t frames);

  // Writes the rest. False when anything could not be written.
  bool Finish();

 private:
  bool Note(bool good);

  static constexpr uint32_t kPieceFrames = 4800;

  const std::string m_name;
  const DeviceFormat m_format;  // Of what is written.
  std::unique_ptr<FrameWriter> m_writer;
  std::unique_ptr<Resampler> m_resampler;  // Null when the file has the same format.
  std::vector<short> m_converted;
  size_t m_unflushed = 0;  // Frames.
  bool m_good = true;
};

// The two kinds. Null, with errno set, when the file cannot be written.
std::unique_ptr<FrameWriter> OpenWaveWriter(const char* name, DeviceFormat format, bool append);
std::unique_ptr<FrameWriter> OpenAdtsWriter(const char* name, DeviceFormat format, bool append);

// Opens for writing, without a buffer of its own, as the kinds do: an append to a file that is
// there leaves what it holds, everything else starts empty. Null, with errno set, on failure.
File OpenForWriting(const char* name, bool append);

// Writes all of `bytes` at the end of the file, or nothing.
bool AppendWhole(FILE* file, const void* bytes, size_t count);

}  // namespace desktop
