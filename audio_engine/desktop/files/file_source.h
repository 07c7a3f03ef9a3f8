#pragma once

#include <cstddef>
#include <cstdint>

namespace desktop {

// Why an audio file cannot be read.
enum class FileFault {
  kNone,         // It can.
  kCannotOpen,   // It is not there, or not a file that can be read.
  kUnknownKind,  // It holds no audio that is known here.
  kDamaged,      // It begins as a known kind does.
  kNoDecoder     // Its kind is known, but nothing here decodes it, or memory is short.
};

// An audio file as interleaved 16-bit samples. Samples of other precision are rounded, those beyond
// full scale limited. Not for a device's thread: it reads files. Belongs to one thread at a time.
class FileSource {
 public:
  virtual ~FileSource() = default;

  virtual uint32_t Rate() const = 0;      // Hz, 1 to 768000.
  virtual uint32_t Channels() const = 0;  // 1 to 64.

  // The whole length in frames, as far as the file tells.
  virtual size_t Frames() const = 0;

  // Reads the next `frames` frames; fewer at the end, and 0 after it.
  virtual size_t Read(short* samples, size_t frames) = 0;

  // Whether reading ended before the end of the file that Frames tells: the file was cut off, or
  // the disk failed.
  virtual bool Failed() const = 0;

  // Back to the start. False when that fails; nothing more can be read then.
  virtual bool Rewind() = 0;

  // The whole length in ms, rounded down.
  uint32_t LengthMs() const { return static_cast<uint32_t>(Frames() * 1000 / Rate()); }
};

}  // namespace desktop
