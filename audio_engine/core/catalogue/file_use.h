#pragma once

#include <climits>
#include <string>
#include <utility>

#include "catalogue/files.h"

// Short words for the files that many rows name.

namespace harness {

inline FileUse Wave(std::string name) {
  return {.name = std::move(name), .container = Container::kWave};
}

// A WAVE of any rate and channel count, 10 ms at a time.
inline FileUse AnyWave(std::string name) {
  return {.name = std::move(name), .container = Container::kWave, .blockMs = 10};
}

// The same, of which an engine treats some.
inline FileUse TreatedWave(std::string name, const Treated& treated) {
  FileUse use = AnyWave(std::move(name));
  use.treated = treated;
  return use;
}

inline constexpr Treated kCallRates = {.leastRate = 8000, .mostRate = 48000, .mostChannels = 2};
inline constexpr Treated kMusicRates = {.leastRate = 8000, .mostRate = 192000, .mostChannels = 2};

// A WAVE of one channel and any rate, 10 ms at a time, without which a routine ends its process.
inline FileUse MonoWave(std::string name) {
  FileUse use = AnyWave(std::move(name));
  use.channels = 1;
  use.mostBlockSamples = INT_MAX;
  use.otherFormat = OtherFormat::kAborts;
  return use;
}

// A WAVE whose samples are taken for 16-bit ones of this format, after what is taken for a header.
inline FileUse TakenFor(std::string name, WaveFormat format, int blockBytes, WaveHeader header) {
  return {.name = std::move(name),
          .container = Container::kWave,
          .rate = format.rate,
          .channels = format.channels,
          .blockBytes = blockBytes,
          .header = header};
}

inline constexpr WaveFormat kMono16 = {16000, 1};
inline constexpr WaveFormat kStereo44 = {44100, 2};

// A stream, a text or whatever else is no audio that the host reads.
inline FileUse Other(std::string name, std::string content) {
  return {.name = std::move(name), .content = std::move(content)};
}

inline FileUse Text(std::string name) { return Other(std::move(name), "text"); }

// Samples of 16 bits and nothing else, at a rate in Hz.
inline FileUse Headerless(std::string name, int rate, int channels, int blockBytes = 0) {
  return {.name = std::move(name),
          .container = Container::kHeaderless,
          .rate = rate,
          .channels = channels,
          .blockBytes = blockBytes};
}

// A file whose absence is an outcome of the routine, and which.
inline FileUse Optional(FileUse use, std::string without) {
  use.optional = true;
  use.without = std::move(without);
  return use;
}

// The same, where the outputs are as they should be without it.
inline FileUse Dispensable(FileUse use, std::string without) {
  use.dispensable = true;
  return Optional(std::move(use), std::move(without));
}

// A file that is right only in the format of another input.
inline FileUse InFormatOf(std::string other, FileUse use, OtherFormat otherFormat) {
  use.formatOf = std::move(other);
  use.withFirst = true;
  use.otherFormat = otherFormat;
  return use;
}

// An input that belongs to the first one.
inline FileUse WithFirst(FileUse use) {
  use.withFirst = true;
  return use;
}

// An input of which a run may leave a part unread, and why.
inline FileUse ReadInPart(FileUse use, std::string reason) {
  use.partRead = std::move(reason);
  return use;
}

// A file that begins with the header of another.
inline FileUse WithForeignHeader(FileUse use) {
  use.foreignHeader = true;
  return use;
}

}  // namespace harness
