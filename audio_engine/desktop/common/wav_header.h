#pragma once

#include <cstdint>
#include <cstdio>

// How both writers lay out a WAVE file of integer PCM.

namespace desktop {

struct WavFormat {
  int sampleRate;  // Hz.
  int channels;
  int bitsPerSample;
};

enum class WavBuffer {
  kNone,  // What a write returns is in the file.
  kStdio  // Stdio's own, for many small writes; fflush says whether all of it fits.
};

// Truncates `name` and writes a header that announces no data, which is in the file at once. Null,
// with one line in the log, on failure.
FILE* CreateWav(const char* name, const WavFormat& format, WavBuffer buffer);

// Appends bytes to a stream of CreateWav without a buffer and returns how many the file has kept.
// Fewer than asked for: one line in the log, which starts with `name`, and the stream is finished
// and null. A null stream keeps nothing.
size_t AppendToWav(FILE*& file, const char* name, const WavFormat& format, const void* data,
                   size_t bytes);

// Finishes a stream of CreateWav with the number of data bytes that the file holds, closes it and
// returns that number; null is ignored. Data of 4 GiB and more are announced as 0xffffffff bytes.
uint64_t FinishWav(FILE* file, const WavFormat& format);

}  // namespace desktop
