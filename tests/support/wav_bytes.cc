#include "support/wav_bytes.h"

namespace {

template <typename T>
std::string LittleEndian(T value) {
  std::string bytes;
  for (unsigned i = 0; i < sizeof(T); ++i) {
    bytes += static_cast<char>(static_cast<uint64_t>(value) >> 8 * i & 0xff);
  }
  return bytes;
}

std::string FormatBytes(const WavFormat& format) {
  return LittleEndian(format.tag) + LittleEndian(format.channels) + LittleEndian(format.rate) +
         LittleEndian(format.rate * format.blockAlign) + LittleEndian(format.blockAlign) +
         LittleEndian(format.bits);
}

}  // namespace

std::string Chunk(const std::string& id, const std::string& body, uint32_t announced) {
  return id + LittleEndian(announced) + body + std::string(body.size() % 2, '\0');
}

std::string Chunk(const std::string& id, const std::string& body) {
  return Chunk(id, body, static_cast<uint32_t>(body.size()));
}

std::string PlainFormat(const WavFormat& format) { return Chunk("fmt ", FormatBytes(format)); }

std::string ExtensibleFormat(WavFormat format, uint16_t subformatTag) {
  format.tag = 0xFFFE;
  const std::string subformat = LittleEndian(subformatTag) +
                                std::string("\x00\x00\x00\x00\x10\x00\x80\x00", 8) +
                                std::string("\x00\xAA\x00\x38\x9B\x71", 6);
  return Chunk("fmt ", FormatBytes(format) + LittleEndian<uint16_t>(22) +
                           LittleEndian(format.bits) + LittleEndian<uint32_t>(0) + subformat);
}

std::string Riff(const std::string& chunks) { return Chunk("RIFF", "WAVE" + chunks); }

std::string SampleBytes(const std::vector<short>& samples) {
  std::string bytes;
  for (const short sample : samples) bytes += LittleEndian(static_cast<uint16_t>(sample));
  return bytes;
}

std::string WavBytes(const WavFormat& format, const std::vector<short>& samples) {
  return Riff(PlainFormat(format) + Chunk("data", SampleBytes(samples)));
}
