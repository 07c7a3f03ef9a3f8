#include "files/audio_layout.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr int kPcm = 1;
constexpr int kFloat = 3;
constexpr int kExtensible = 0xFFFE;  // The real format stands further on.

// WAVE is little-endian, whatever the machine is.
uint32_t Number(const unsigned char* bytes, int count) {
  uint32_t value = 0;
  while (count-- > 0) value = value << 8 | bytes[count];
  return value;
}

bool ReadFormat(FILE* file, uint32_t size, AudioLayout& layout) {
  unsigned char chunk[40] = {};
  if (size < 16 || fread(chunk, 1, std::min<size_t>(size, sizeof chunk), file) < 16) return false;
  uint32_t format = Number(chunk, 2);
  if (format == kExtensible) format = Number(chunk + 24, 2);
  layout.channels = static_cast<int>(Number(chunk + 2, 2));
  layout.rate = static_cast<int>(Number(chunk + 4, 4));
  layout.frameBytes = static_cast<int>(Number(chunk + 12, 2));
  const int bits = static_cast<int>(Number(chunk + 14, 2));
  const bool packed = layout.frameBytes * 8 == bits * layout.channels;
  if (packed && format == kPcm && bits == 16) layout.samples = SampleType::kPcm16;
  if (packed && format == kFloat && bits == 32) layout.samples = SampleType::kFloat32;
  return layout.channels > 0 && layout.rate > 0 && layout.frameBytes > 0;
}

std::optional<AudioLayout> FindInWave(FILE* file, uint64_t fileBytes) {
  unsigned char head[12];
  if (fread(head, 1, 12, file) < 12) return std::nullopt;
  if (memcmp(head, "RIFF", 4) != 0 || memcmp(head + 8, "WAVE", 4) != 0) return std::nullopt;

  AudioLayout layout;
  for (uint64_t at = 12; fseeko(file, static_cast<off_t>(at), SEEK_SET) == 0;) {
    unsigned char chunk[8];
    if (fread(chunk, 1, 8, file) < 8) return std::nullopt;
    const uint32_t size = Number(chunk + 4, 4);
    if (memcmp(chunk, "fmt ", 4) == 0 && !ReadFormat(file, size, layout)) return std::nullopt;
    if (memcmp(chunk, "data", 4) == 0) {
      if (layout.channels == 0) return std::nullopt;  // Samples before their format.
      layout.offset = at + 8;
      layout.bytes = std::min<uint64_t>(size, fileBytes - std::min(fileBytes, layout.offset));
      return layout;
    }
    at += 8 + uint64_t{size} + size % 2;
  }
  return std::nullopt;
}

}  // namespace

double AudioLayout::Seconds() const {
  if (rate == 0 || frameBytes == 0) return 0;
  const uint64_t frames = bytes / static_cast<uint64_t>(frameBytes);
  return static_cast<double>(frames) / rate;
}

std::optional<AudioLayout> FindAudio(const FileUse& use, FILE* file, uint64_t fileBytes) {
  if (use.container == Container::kOther) return std::nullopt;
  if (use.container == Container::kWave) return FindInWave(file, fileBytes);
  const int sampleBytes = use.samples == SampleType::kPcm16 ? 2 : 4;
  return AudioLayout{.samples = use.samples,
                     .rate = use.rate,
                     .channels = use.channels,
                     .bytes = fileBytes,
                     .frameBytes = sampleBytes * use.channels};
}

}  // namespace host
