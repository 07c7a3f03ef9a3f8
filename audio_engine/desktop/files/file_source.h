#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "engine_api/mixing/audio_file_player.h"

namespace desktop {

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

// An audio file as interleaved 16-bit samples: WAVE, FLAC, Ogg, MP3, AIFF and more by libsndfile,
// AAC (ADTS) by libfdk-aac, known by its content and not by its name. Samples of other precision
// are rounded, those beyond full scale limited. Not for a device's thread: it reads files. Belongs
// to one thread at a time.
class FileSource {
 public:
  // Opens a file into `source`, which is null unless the answer is PLAYER_OPEN_SUCCESS; the log has
  // a line then.
  static FilePlayerOpenStatus Open(const char* name, std::unique_ptr<FileSource>* source);

  virtual ~FileSource() = default;

  virtual uint32_t Rate() const = 0;      // Hz, 1 to 768000.
  virtual uint32_t Channels() const = 0;  // 1 to 64.

  // The whole length, in frames (samples per channel), as far as the file tells.
  virtual uint64_t Frames() const = 0;

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

// The two kinds. Each takes the open file over, and answers as Open does, without a line in the
// log.
FilePlayerOpenStatus OpenSoundFile(File file, std::unique_ptr<FileSource>* source);
FilePlayerOpenStatus OpenAacFile(File file, std::unique_ptr<FileSource>* source);

}  // namespace desktop
