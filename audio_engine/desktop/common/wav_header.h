#pragma once

#include <cstdint>
#include <cstdio>

#include "engine_api/common/wav_file_writer.h"

// How both writers lay out a WAVE file, and how all WAVE files are opened.

namespace desktop {

// A header of integer PCM that announces no data. sampleRate: Hz.
WavHeader EmptyWavHeader(int sampleRate, int channels, int bitsPerSample);

// Opens a file as fopen does. A FIFO is refused (null, errno ENXIO), because opening one waits for
// its other end, perhaps for ever.
FILE* OpenWav(const char* name, const char* mode);

enum class WavBuffer {
  kNone,  // What a write returns is in the file.
  kStdio  // Stdio's own, for many small writes; fflush says whether all of it fits.
};

// Truncates `name` and writes the header, which is in the file at once. Null, with one line in the
// log, on failure.
FILE* CreateWav(const char* name, const WavHeader& header, WavBuffer buffer);

// Finishes a stream of CreateWav with the number of data bytes that the file holds, closes it and
// returns that number; null is ignored. Data of 4 GiB and more are announced as 0xffffffff bytes.
uint64_t FinishWav(FILE* file, WavHeader header);

}  // namespace desktop
