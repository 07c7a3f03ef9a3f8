#pragma once

#include <cstdio>

namespace harness {

// A stdio stream that a routine was handed and that may be null. A null one stands at 0 and does
// not move.
inline long Position(FILE* stream) { return stream != nullptr ? ftell(stream) : 0; }

// To `offset` bytes from the start.
inline void SeekTo(FILE* stream, long offset) {
  if (stream != nullptr) fseek(stream, offset, SEEK_SET);
}

}  // namespace harness
