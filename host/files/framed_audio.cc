#include "files/framed_audio.h"

#include <cstdint>
#include <iterator>

namespace host {

namespace {

using Bytes = std::span<const unsigned char>;

// Returns the bytes of the frame of ISO/IEC 13818-7, 6.2, that begins here; 0 when none does.
size_t AdtsFrameBytes(Bytes head) {
  if (head.size() < 7 || head[0] != 0xFF || (head[1] & 0xF6) != 0xF0) return 0;
  const int rateIndex = head[2] >> 2 & 0xF;
  const size_t bytes = (head[3] & 3U) << 11 | static_cast<size_t>(head[4]) << 3U | head[5] >> 5U;
  return rateIndex > 12 || bytes < 7 ? 0 : bytes;
}

// Returns the bytes of the frame of ISO/IEC 11172-3, 2.4, or 13818-3 that begins here; 0 when none
// does.
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

// Returns the bytes of the frame of ATSC A/52, 5.3 and table 5.18, that begins here; 0 when none
// does.
size_t Ac3FrameBytes(Bytes head) {
  if (head.size() < 6 || head[0] != 0x0B || head[1] != 0x77) return 0;
  static constexpr uint16_t kRates[] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                        192, 224, 256, 320, 384, 448, 512, 576, 640};  // kbit/s
  const unsigned frequencyIndex = head[4] >> 6;
  const unsigned sizeIndex = head[4] & 0x3FU;
  const unsigned version = head[5] >> 3;
  if (frequencyIndex == 3 || sizeIndex / 2 >= std::size(kRates) || version > 10) return 0;
  const unsigned rate = kRates[sizeIndex / 2];
  if (frequencyIndex == 0) return size_t{2} * rate * 2;  // 48 kHz
  if (frequencyIndex == 2) return size_t{2} * rate * 3;  // 32 kHz
  return size_t{2} * (rate * 320 / 147 + sizeIndex % 2);
}

// Returns whether frames follow each other here whose headers agree in what does not change from
// frame to frame: as many as there are, but no more than four. Two of MPEG's are soon found in
// quiet noise, where -1 is half a header.
template <size_t kCount>
bool FramesFollow(Bytes head, size_t (*frameBytes)(Bytes),
                  const unsigned char (&constant)[kCount]) {
  constexpr int kMaxFrames = 4;
  constexpr size_t kHeaderBytes = 7;
  size_t at = frameBytes(head);
  int frames = at > 0 ? 1 : 0;
  while (frames > 0 && frames < kMaxFrames && at + kHeaderBytes <= head.size()) {
    const Bytes next = head.subspan(at);
    const size_t bytes = frameBytes(next);
    if (bytes == 0) return false;
    for (size_t i = 0; i < kCount; ++i) {
      if (((head[i] ^ next[i]) & constant[i]) != 0) return false;
    }
    at += bytes;
    ++frames;
  }
  return frames > 1;
}

}  // namespace

std::string_view FramedAudio(Bytes head) {
  if (FramesFollow(head, MpegFrameBytes, {0xFF, 0xFE, 0x0C, 0})) return "an MP3 file";
  if (FramesFollow(head, AdtsFrameBytes, {0xFF, 0xFF, 0xFF, 0xF0})) return "an AAC file";
  if (FramesFollow(head, Ac3FrameBytes, {0xFF, 0xFF, 0, 0, 0xFE, 0xF8})) return "an AC-3 file";
  return "";
}

}  // namespace host
