#pragma once

#include <cstddef>
#include <cstdio>
#include <span>

#include "engine_api/common/wav_reader.h"
#include "harness/stdio_file.h"

namespace harness {

// "A whole block or stop": true when the block was read whole, false at the end of the input. A
// block of nothing counts as the end; a missing WAVE has rate 0, and reading 0 samples from it
// would go on for ever. So does a block that is larger than its array, as a broken header may ask
// for.

// `samples` interleaved samples (of all channels together) from a WAVE: shorts, or floats that keep
// the 16-bit range.
template <typename Sample, size_t capacity>
bool ReadBlock(zuwebrtc::WavReader& reader, Sample (&block)[capacity], unsigned samples) {
  return samples > 0 && samples <= capacity && reader.ReadSamples(samples, block) == samples;
}

// The same into an array whose size is known when the program runs.
inline bool ReadBlock(zuwebrtc::WavReader& reader, std::span<short> block, unsigned samples) {
  return samples > 0 && samples <= block.size() &&
         reader.ReadSamples(samples, block.data()) == samples;
}

// `bytes` bytes from a stream, which may be null.
bool ReadBlock(FILE* stream, void* block, size_t bytes);

// `bytes` bytes from a headerless file.
bool ReadBlock(StdioFile& file, void* block, size_t bytes);

// The same into an array, whose size is known.
template <typename T, size_t capacity>
bool ReadBlock(StdioFile& file, T (&block)[capacity], size_t bytes) {
  return bytes <= sizeof block && ReadBlock(file, static_cast<void*>(block), bytes);
}

}  // namespace harness
