#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

// RIFF/WAVE as every part of this project reads and writes it. Knows no engine and no host.

namespace wave {

enum class Coding {
  kPcm,    // Integers.
  kFloat,  // IEEE 754.
  kALaw,
  kMuLaw,
  kOther
};

// One run of interleaved samples in a file.
struct Audio {
  Coding coding = Coding::kOther;
  int bits = 0;                 // Of one sample.
  int rate = 0;                 // Hz, 1 to 768000.
  int channels = 0;             // 1 to 64.
  int frameBytes = 0;           // One sample of each channel, at least 1.
  uint64_t offset = 0;          // Where the samples start in the file.
  uint64_t bytes = 0;           // Of samples: as many as announced, but no more than there are.
  uint64_t announcedBytes = 0;  // Where the header leaves the length open: `bytes`.

  // True for 16-bit integers and 32-bit floats without padding.
  bool IsPcm16() const;
  bool IsFloat32() const;
};

// What a file holds, or why it holds no audio that could be found.
struct Parsed {
  std::optional<Audio> audio;
  const char* fault = "";  // Empty when there is audio.
};

// Finds the samples of a regular file of `fileBytes` bytes, open for reading from anywhere, in at
// most 1000 chunks. Accepts the plain and the extensible format. A data chunk that announces all
// ones, or nothing while the whole file announces nothing as well, reaches to the end of the file,
// as programs leave it that cannot go back to their header.
Parsed Find(FILE* file, uint64_t fileBytes);

// Where the lengths in a header and those of the file differ, for audio that was found in it: "its
// header announces 8 bytes of samples, there are 6". Empty when they agree; a length that the
// header leaves open does not.
std::string LengthFault(FILE* file, const Audio& audio, uint64_t fileBytes);

constexpr size_t kHeaderBytes = 44;

// The canonical header of integer PCM, as it stands in the file. Data that need a pad byte or are
// beyond 4 GiB are announced as such.
std::array<unsigned char, kHeaderBytes> Header(int rate, int channels, int bits,
                                               uint64_t dataBytes);

}  // namespace wave
