#pragma once

#include <cstddef>
#include <cstdint>

namespace desktop {

// Why an audio file cannot be read.
enum class FileFault {
  // It can be read.
  kNone,
  // It is not there, or is no file that can be read.
  kCannotOpen,
  // It holds no audio of a kind that is known here.
  kUnknownKind,
  // It begins as a known kind does and is not as that kind should be.
  kDamaged,
  // Its kind is known, but nothing here decodes it, or memory is short.
  kNoDecoder
};

// An audio file as interleaved 16-bit samples. Samples of other precision are rounded, those beyond
// full scale limited. Not for a device's thread: it reads files. Belongs to one thread at a time.
class FileSource {
 public:
  virtual ~FileSource() = default;

  virtual uint32_t Rate() const = 0;      // Hz, 1 to 768000.
  virtual uint32_t Channels() const = 0;  // 1 to 64.

  // Returns the whole length in frames, as far as the file tells.
  virtual size_t Frames() const = 0;

  // Reads the next `frames` frames and returns how many there were: fewer at the end, 0 after it.
  virtual size_t Read(short* samples, size_t frames) = 0;

  // Returns whether reading ended before the length that Frames tells: the file was cut off, or the
  // disk failed.
  virtual bool Failed() const = 0;

  // Goes back to the start. Returns false when that fails; nothing more can be read then.
  virtual bool Rewind() = 0;

  // Returns the whole length in ms, rounded down.
  uint32_t LengthMs() const { return static_cast<uint32_t>(Frames() * 1000 / Rate()); }
};

}  // namespace desktop
