#pragma once

#include <cstdint>
#include <string>
#include <vector>

// WAVE files put together byte by byte, for tests of readers.

struct WavFormat {
  uint16_t tag = 1;
  uint16_t channels = 1;
  uint32_t rate = 16000;  // Hz.
  uint16_t bits = 16;
  uint16_t blockAlign = static_cast<uint16_t>(channels * bits / 8);
};

// An id of four characters, the length that is announced, and the body, padded to an even length.
std::string Chunk(const std::string& id, const std::string& body, uint32_t announced);
std::string Chunk(const std::string& id, const std::string& body);

// The "fmt " chunk: 16 bytes, or 40 with a subformat that begins with `subformatTag`.
std::string PlainFormat(const WavFormat& format);
std::string ExtensibleFormat(WavFormat format, uint16_t subformatTag);

// The chunks after "RIFF", their length and "WAVE".
std::string Riff(const std::string& chunks);

// Little-endian bytes of the samples.
std::string SampleBytes(const std::vector<short>& samples);

// A canonical file.
std::string WavBytes(const WavFormat& format, const std::vector<short>& samples);
