#include "files/foreign_audio.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace host {

namespace {

using Bytes = std::span<const unsigned char>;

constexpr size_t kMostFrameBytes = 8191;  // Of ADTS; MPEG frames are shorter.

bool HasAt(Bytes head, size_t at, std::string_view text) {
  return head.size() >= at + text.size() && memcmp(head.data() + at, text.data(), text.size()) == 0;
}

// ISO/IEC 13818-7, 6.2: the bytes of the frame that begins here; 0 when none does.
size_t AdtsFrameBytes(Bytes head) {
  if (head.size() < 7 || head[0] != 0xFF || (head[1] & 0xF6) != 0xF0) return 0;
  const int rateIndex = head[2] >> 2 & 0xF;
  const size_t bytes = (head[3] & 3U) << 11 | static_cast<size_t>(head[4]) << 3U | head[5] >> 5U;
  return rateIndex > 12 || bytes < 7 ? 0 : bytes;
}

// ISO/IEC 11172-3, 2.4 and 13818-3: the bytes of the frame that begins here; 0 when none does.
size_t MpegFrameBytes(Bytes head) {
  if (head.size() < 4 || head[0] != 0xFF || (head[1] & 0xE0) != 0xE0) return 0;
  const int version = head[1] >> 3 & 3;  // 3: MPEG-1, 2: MPEG-2, 0: MPEG-2.5.
  const int layer = 4 - (head[1] >> 1 & 3);
  const unsigned rateIndex = head[2] >> 4;
  const unsigned frequencyIndex = head[2] >> 2 & 3;
  const unsigned padding = head[2] >> 1 & 1;
  if (version == 1 || layer == 4 || rateIndex == 0 || rateIndex == 15 || frequencyIndex == 3) {
    return 0;
  }
  static constexpr uint16_t kRates[5][14] = {
      // kbit/s: MPEG-1 layers I, II, III; the others' layer I, layers II and III.
      {32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
      {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
      {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
      {32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
      {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}};
  static constexpr unsigned kFrequencies[3] = {44100, 48000, 32000};
  const bool first = version == 3;
  const int table = first ? layer - 1 : (layer == 1 ? 3 : 4);
  const unsigned rate = kRates[table][rateIndex - 1] * 1000U;
  const unsigned frequency = kFrequencies[frequencyIndex] / (first ? 1 : version == 2 ? 2 : 4);
  if (layer == 1) return (12 * rate / frequency + padding) * 4;
  const unsigned slots = layer == 3 && !first ? 72 : 144;
  return slots * rate / frequency + padding;
}

// Two frames in a row whose headers agree in what does not change from frame to frame.
bool TwoFrames(Bytes head, size_t (*frameBytes)(Bytes), const unsigned char (&constant)[4]) {
  const size_t first = frameBytes(head);
  if (first == 0 || first >= head.size()) return false;
  const Bytes second = head.subspan(first);
  if (frameBytes(second) == 0) return false;
  for (size_t i = 0; i < 4; ++i) {
    if (((head[i] ^ second[i]) & constant[i]) != 0) return false;
  }
  return true;
}

}  // namespace

std::string_view ForeignAudio(Bytes head) {
  if (HasAt(head, 0, "RIFF")) return HasAt(head, 8, "WAVE") ? "a WAVE file" : "a RIFF file";
  if (HasAt(head, 0, "fLaC")) return "a FLAC file";
  if (HasAt(head, 0, "OggS")) return "an Ogg file";
  if (HasAt(head, 4, "ftyp")) return "an MP4 file";
  // A tag's version and size have bytes that are never that large.
  const bool tag = HasAt(head, 0, "ID3") && head.size() >= 10 && head[3] < 0xFF && head[4] < 0xFF &&
                   ((head[6] | head[7] | head[8] | head[9]) & 0x80) == 0;
  if (tag || TwoFrames(head, MpegFrameBytes, {0xFF, 0xFE, 0x0C, 0})) return "an MP3 file";
  if (TwoFrames(head, AdtsFrameBytes, {0xFF, 0xFF, 0xFF, 0xF0})) return "an AAC file";
  return "";
}

std::string_view ForeignAudio(FILE* file) {
  std::vector<unsigned char> head(kMostFrameBytes + 7);
  rewind(file);
  head.resize(fread(head.data(), 1, head.size(), file));
  rewind(file);
  return ForeignAudio(Bytes(head));
}

}  // namespace host
