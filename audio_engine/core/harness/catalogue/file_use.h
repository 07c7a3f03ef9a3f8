#pragma once

#include <string>
#include <utility>

#include "harness/catalogue/catalogue.h"

// Short words for the files that many rows name.

namespace harness {

inline FileUse Wave(std::string name) {
  return {.name = std::move(name), .container = Container::kWave};
}

// Samples of 16 bits and nothing else, at a rate in Hz.
inline FileUse Headerless(std::string name, int rate, int channels, int blockBytes = 0) {
  return {.name = std::move(name),
          .container = Container::kHeaderless,
          .rate = rate,
          .channels = channels,
          .blockBytes = blockBytes};
}

// A file whose absence is an outcome of the routine.
inline FileUse Optional(FileUse use) {
  use.optional = true;
  return use;
}

// The same, where the outputs are as good without it.
inline FileUse Dispensable(FileUse use) {
  use.dispensable = true;
  return Optional(std::move(use));
}

// A file that begins with the header of another.
inline FileUse WithForeignHeader(FileUse use) {
  use.foreignHeader = true;
  return use;
}

}  // namespace harness
