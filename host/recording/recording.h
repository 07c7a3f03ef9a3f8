#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace host {

// How the samples of a file without a header are laid out, little-endian and interleaved.
struct RawForm {
  enum class Samples { kS16, kS24, kS32, kF32 };
  int rate = 0;  // Hz
  int channels = 0;
  Samples samples = Samples::kS16;
  uint64_t offset = 0;                 // Where they start, in bytes,
  std::optional<uint64_t> bytes = {};  // and how many there are; all that follow when not given.
};

// What a recording is.
struct RecordingFormat {
  std::string container = {};  // "FLAC", "WAVE", "headerless".
  std::string samples = {};    // "24-bit", "32-bit float", "Vorbis".
  int rate = 0;                // Hz
  int channels = 0;
  std::optional<uint64_t> frames = {};  // Nothing where only decoding it tells.

  // "FLAC, 24-bit, 48000 Hz, stereo, 12.50 s".
  std::string Words() const;
};

// An audio file that is decoded block by block, in memory that does not grow with it.
class Recording {
 public:
  virtual ~Recording() = default;
  Recording() = default;
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  virtual const RecordingFormat& Format() const = 0;

  // Reads the next `frames` frames, interleaved, full scale at 1. Fewer at the end, and where the
  // file is damaged: then Fault says so.
  virtual size_t Read(double* samples, size_t frames) = 0;

  // Why reading ended before the end: "is not whole: 2.5 s of 13.9 s can be read". Empty when it
  // did not.
  virtual std::string Fault() const = 0;
};

struct OpenedRecording {
  std::unique_ptr<Recording> recording = {};
  std::string fault = {};  // Why there is none, as what follows the name of the file.
};

// Opens a regular file that stays open for as long as the recording lives, by its content: what
// libsndfile reads, and AAC in ADTS where the build has libfdk-aac. With `raw`, what is of no known
// kind is read in that form, and so is every file of which `raw` says how many bytes it has.
OpenedRecording OpenRecording(FILE* file, const std::optional<RawForm>& raw);

// The kinds, for OpenRecording.
OpenedRecording OpenSoundRecording(int file);
OpenedRecording OpenAacRecording(int file);
OpenedRecording OpenRawRecording(int file, const RawForm& form);

// Rates and channel counts beyond which a file is taken for damaged.
inline constexpr int kMaxRate = 768000;
inline constexpr int kMaxRecordedChannels = 64;

}  // namespace host
