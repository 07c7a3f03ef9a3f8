#include "files/foreign_audio.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "files/framed_audio.h"
#include "files/plain_text.h"

namespace host {

namespace {

using Bytes = std::span<const unsigned char>;
using std::string_view_literals::operator""sv;

// What a kind of file begins with: one text at its start, and a second one where one alone says too
// little.
struct Signature {
  std::string_view kind;
  std::string_view start;
  size_t at = 0;
  std::string_view further = {};
};

constexpr Signature kSignatures[] = {
    {.kind = "a WAVE file", .start = "RIFF", .at = 8, .further = "WAVE"},
    {.kind = "a RIFF file", .start = "RIFF"},
    {.kind = "an RF64 file", .start = "RF64", .at = 8, .further = "WAVE"},
    {.kind = "a W64 file", .start = "riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\0\0"sv},
    {.kind = "an AIFF file", .start = "FORM", .at = 8, .further = "AIFF"},
    {.kind = "an AIFF file", .start = "FORM", .at = 8, .further = "AIFC"},
    {.kind = "an AU file", .start = ".snd"},
    {.kind = "a CAF file", .start = "caff\0\1"sv},
    {.kind = "a FLAC file", .start = "fLaC"},
    {.kind = "an Ogg file", .start = "OggS"},
    {.kind = "an MP4 file", .start = "", .at = 4, .further = "ftyp"},
    {.kind = "a WMA file",
     .start = "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\0\xAA\0\x62\xCE\x6C"sv},
    {.kind = "a Matroska file", .start = "\x1A\x45\xDF\xA3"},
    {.kind = "a TTA file", .start = "TTA1"},
    {.kind = "a TTA file", .start = "TTA2"},
    {.kind = "a WavPack file", .start = "wvpk"},
    {.kind = kProgram,
     .start = "\x7F"
              "ELF"},
};

bool HasAt(Bytes head, size_t at, std::string_view text) {
  if (head.size() < at + text.size()) return false;
  const auto same = [](char letter, uint8_t byte) { return static_cast<uint8_t>(letter) == byte; };
  return std::equal(text.begin(), text.end(), head.begin() + static_cast<ptrdiff_t>(at), same);
}

// Returns the number in four bytes, which are there.
uint32_t LittleEndian(Bytes head, size_t at) {
  uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) value = value << 8U | head[at + i];
  return value;
}

uint32_t BigEndian(Bytes head, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value = value << 8U | head[at + i];
  return value;
}

// Returns whether it is Microsoft's PE format: a header at the place that the old one names.
bool IsPortableExecutable(Bytes head) {
  constexpr size_t kPlace = 0x3C;
  return HasAt(head, 0, "MZ") && head.size() >= kPlace + 4 &&
         HasAt(head, LittleEndian(head, kPlace), "PE\0\0"sv);
}

// Returns whether the file begins as Apple's loader.h says: with the magic number, a processor that
// there is (without the bit for 64 of them), and a type of file. The magic number alone may be four
// quiet samples.
bool IsMachO(Bytes head, uint32_t (*number)(Bytes, size_t)) {
  if (head.size() < 28 || (number(head, 0) & ~1U) != 0xFEEDFACE) return false;
  const uint32_t processor = number(head, 4) & ~0x01000000U;
  const uint32_t type = number(head, 12);
  return processor > 0 && processor <= 18 && type > 0 && type <= 15;
}

// Returns whether it holds several Mach-O files. A class file of Java begins alike, but with a
// version beyond 44.
bool IsFatMachO(Bytes head) {
  if (head.size() < 28 || BigEndian(head, 0) != 0xCAFEBABE) return false;
  const uint32_t count = BigEndian(head, 4);
  return count > 0 && count <= 32;
}

bool IsProgram(Bytes head) {
  return IsPortableExecutable(head) || IsMachO(head, LittleEndian) || IsMachO(head, BigEndian) ||
         IsFatMachO(head);
}

// ID3v2, whose version and size have bytes that are never that large.
bool HasTag(Bytes head) {
  return HasAt(head, 0, "ID3") && head.size() >= 10 && head[3] < 0xFF && head[4] < 0xFF &&
         ((head[6] | head[7] | head[8] | head[9]) & 0x80) == 0;
}

}  // namespace

std::string_view ForeignAudio(Bytes head) {
  for (const Signature& signature : kSignatures) {
    if (HasAt(head, 0, signature.start) && HasAt(head, signature.at, signature.further)) {
      return signature.kind;
    }
  }
  if (HasTag(head)) return "an MP3 file";
  if (const std::string_view framed = FramedAudio(head); !framed.empty()) return framed;
  if (IsProgram(head)) return kProgram;
  return IsPlainText(head) ? kText : "";
}

std::string_view ForeignAudio(FILE* file) {
  std::vector<unsigned char> head(kFramedHeadBytes);
  rewind(file);
  head.resize(fread(head.data(), 1, head.size(), file));
  rewind(file);
  return ForeignAudio(Bytes(head));
}

}  // namespace host
