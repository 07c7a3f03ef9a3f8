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
  // Every write goes to the file at once.
  kNone,
  // Small writes are collected; fflush tells whether all of them fit.
  kStdio
};

// Truncates `name` and writes a header that announces no data, which is in the file at once.
// Returns null, with one line in the log, on failure.
FILE* CreateWav(const char* name, const WavFormat& format, WavBuffer buffer);

// Appends bytes to a stream of CreateWav without a buffer and returns how many the file has kept.
// Fewer than asked for: one line in the log, which starts with `name`, and the stream is finished
// and null. A null stream keeps nothing.
size_t AppendToWav(FILE*& file, const char* name, const WavFormat& format, const void* data,
                   size_t bytes);

// Writes the number of data bytes that the file holds into the header of a stream of CreateWav,
// closes it and returns that number; null is ignored. Data of 4 GiB and more are announced as
// 0xffffffff bytes.
uint64_t FinishWav(FILE* file, const WavFormat& format);

}  // namespace desktop
