#include "wave_file.h"

#include <algorithm>
#include <cstring>

namespace wave {

namespace {

// Limits beyond which a header is taken for damage, not for audio.
constexpr uint32_t kMaxRate = 768000;
constexpr uint32_t kMaxChannels = 64;
constexpr int kMaxChunks = 1000;

constexpr uint32_t kPcmTag = 1;
constexpr uint32_t kFloatTag = 3;
constexpr uint32_t kALawTag = 6;
constexpr uint32_t kMuLawTag = 7;
constexpr uint32_t kExtensibleTag = 0xFFFE;

// What follows the first two bytes of the extensible format's names for the plain ones.
constexpr unsigned char kSubformatTail[14] = {0, 0, 0,    0, 0x10, 0,    0x80,
                                              0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

// WAVE is little-endian, whatever the machine is.
uint32_t Number(const unsigned char* bytes, int count) {
  uint32_t value = 0;
  while (count-- > 0) value = value << 8 | bytes[count];
  return value;
}

void Put(unsigned char* at, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) at[i] = static_cast<unsigned char>(value >> (8 * i));
}

void PutText(unsigned char* at, std::string_view text) { memcpy(at, text.data(), text.size()); }

bool Is(const unsigned char* id, const char* expected) { return memcmp(id, expected, 4) == 0; }

Coding CodingOf(const unsigned char* chunk) {
  uint32_t tag = Number(chunk, 2);
  if (tag == kExtensibleTag) {
    if (memcmp(chunk + 26, kSubformatTail, sizeof kSubformatTail) != 0) return Coding::kOther;
    tag = Number(chunk + 24, 2);
  }
  switch (tag) {
    case kPcmTag:
      return Coding::kPcm;
    case kFloatTag:
      return Coding::kFloat;
    case kALawTag:
      return Coding::kALaw;
    case kMuLawTag:
      return Coding::kMuLaw;
    default:
      return Coding::kOther;
  }
}

// Takes a format chunk in. Why it can hold no audio; empty when it can.
const char* ReadFormat(FILE* file, uint32_t size, Audio& audio) {
  unsigned char chunk[40] = {};  // What a shorter chunk lacks is zero.
  const size_t wanted = std::min<size_t>(size, sizeof chunk);
  if (size < 16 || fread(chunk, 1, wanted, file) < wanted) return "format cut short";
  audio.coding = CodingOf(chunk);
  const uint32_t channels = Number(chunk + 2, 2);
  const uint32_t rate = Number(chunk + 4, 4);
  audio.frameBytes = static_cast<int>(Number(chunk + 12, 2));
  audio.bits = static_cast<int>(Number(chunk + 14, 2));
  if (channels == 0 || channels > kMaxChannels) return "no such channel count";
  if (rate == 0 || rate > kMaxRate) return "no such rate";
  if (audio.frameBytes == 0) return "block alignment does not fit";
  audio.channels = static_cast<int>(channels);
  audio.rate = static_cast<int>(rate);
  return "";
}

bool Packed(const Audio& audio, Coding coding, int bits) {
  return audio.coding == coding && audio.bits == bits &&
         audio.frameBytes * 8 == bits * audio.channels;
}

uint32_t NumberAt(FILE* file, uint64_t at) {
  unsigned char bytes[4] = {};
  const bool found =
      fseeko(file, static_cast<off_t>(at), SEEK_SET) == 0 && fread(bytes, 1, 4, file) == 4;
  return found ? Number(bytes, 4) : 0;
}

// With the pad byte that a last chunk of odd length should have, but often lacks.
uint64_t Padded(uint64_t bytes) { return bytes + bytes % 2; }

// Where the chunks from `at` on end by what they announce.
uint64_t EndOfChunks(FILE* file, uint64_t at, uint64_t fileBytes) {
  for (int i = 0; i < kMaxChunks && at + 8 <= fileBytes; ++i) {
    at += 8 + Padded(NumberAt(file, at + 4));
  }
  return at;
}

std::string Bytes(uint64_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string ThereAre(uint64_t count) {
  return (count == 1 ? "there is " : "there are ") + std::to_string(count);
}

}  // namespace

bool Audio::IsPcm16() const { return Packed(*this, Coding::kPcm, 16); }

bool Audio::IsFloat32() const { return Packed(*this, Coding::kFloat, 32); }

Parsed Find(FILE* file, uint64_t fileBytes) {
  unsigned char head[12];
  if (fseeko(file, 0, SEEK_SET) != 0) return {{}, "not RIFF"};
  const size_t headBytes = fread(head, 1, sizeof head, file);
  if (headBytes < 4 || !Is(head, "RIFF")) return {{}, "not RIFF"};
  if (headBytes < sizeof head || !Is(head + 8, "WAVE")) return {{}, "not WAVE"};

  Audio audio;
  const char* fault = "no format ahead of the samples";
  uint64_t at = 12;
  for (int i = 0; i < kMaxChunks; ++i) {
    unsigned char chunk[8];
    if (fseeko(file, static_cast<off_t>(at), SEEK_SET) != 0 || fread(chunk, 1, 8, file) < 8) {
      return {{}, "no samples"};
    }
    const uint32_t size = Number(chunk + 4, 4);
    if (Is(chunk, "data")) {
      if (*fault != 0) return {{}, fault};
      audio.offset = at + 8;
      const uint64_t available = fileBytes - std::min(fileBytes, audio.offset);
      const bool open = size == UINT32_MAX || (size == 0 && Number(head + 4, 4) == 0);
      audio.announcedBytes = open ? available : size;
      audio.bytes = std::min(audio.announcedBytes, available);
      return {audio, ""};
    }
    if (Is(chunk, "fmt ")) fault = ReadFormat(file, size, audio);
    at += 8 + uint64_t{size} + size % 2;  // Chunks have even lengths in the file.
  }
  return {{}, "too many chunks"};
}

std::string LengthFault(FILE* file, const Audio& audio, uint64_t fileBytes) {
  const uint64_t samples = NumberAt(file, audio.offset - 4);
  const uint64_t there = fileBytes - std::min(fileBytes, audio.offset);
  if (samples > there ||
      Padded(EndOfChunks(file, audio.offset + Padded(samples), fileBytes)) != Padded(fileBytes)) {
    return "its header announces " + Bytes(samples) + " of samples, " + ThereAre(there);
  }
  const uint64_t whole = uint64_t{NumberAt(file, 4)} + 8;
  if (Padded(whole) == Padded(fileBytes)) return "";
  return "its header announces " + Bytes(whole) + " in all, " + ThereAre(fileBytes);
}

std::array<unsigned char, kHeaderBytes> Header(int rate, int channels, int bits,
                                               uint64_t dataBytes) {
  std::array<unsigned char, kHeaderBytes> header = {};
  const uint64_t frameBytes = static_cast<uint64_t>(channels) * static_cast<uint64_t>(bits) / 8;
  const uint64_t riffBytes = kHeaderBytes - 8 + dataBytes + dataBytes % 2;
  unsigned char* const at = header.data();
  PutText(at, "RIFF");
  Put(at + 4, std::min<uint64_t>(riffBytes, UINT32_MAX), 4);
  PutText(at + 8, "WAVEfmt ");
  Put(at + 16, 16, 4);
  Put(at + 20, kPcmTag, 2);
  Put(at + 22, static_cast<uint64_t>(channels), 2);
  Put(at + 24, static_cast<uint64_t>(rate), 4);
  Put(at + 28, static_cast<uint64_t>(rate) * frameBytes, 4);
  Put(at + 32, frameBytes, 2);
  Put(at + 34, static_cast<uint64_t>(bits), 2);
  PutText(at + 36, "data");
  Put(at + 40, std::min<uint64_t>(dataBytes, UINT32_MAX), 4);
  return header;
}

}  // namespace wave
