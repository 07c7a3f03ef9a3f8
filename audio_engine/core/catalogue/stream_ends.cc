#include "catalogue/stream_ends.h"

#include <cstddef>

#include "bench/codec/whole_frame.h"
#include "engine_api/codec/two_byte_header.h"

namespace harness {

namespace {

// Where the whole frames end that follow each other, each of the bytes that `length` finds at an
// offset; 0 bytes are no frame.
template <typename Length>
uint64_t FramesEnd(StreamBytes bytes, const Length& length) {
  size_t offset = 0;
  while (offset < bytes.size()) {
    const size_t frame = length(offset);
    if (frame == 0 || frame > bytes.size() - offset) break;
    offset += frame;
  }
  return offset;
}

int Number(std::string_view word) {
  Argument<int> number;
  number.Parse(word);
  return number.Value();
}

// `other` is the id that, like 1, has frames with a header of seven bytes.
uint64_t FramesEndOfId(ArgumentWords words, size_t extraHeader, int other, StreamBytes bytes) {
  const int codecId = Number(words[2]);
  int headerLen = codecId == other || codecId == 1 ? 7 : 2;
  if (words[extraHeader] == "true") headerLen = 4;
  const size_t ahead = headerLen == 4 ? 4 : 0;
  return FramesEnd(bytes, [&](size_t offset) {
    const int length = bench::WholeFrameLength(bytes.data(), bytes.size(), offset, headerLen);
    return length == 0 ? 0 : ahead + static_cast<size_t>(length);
  });
}

// The number in the two bytes at an offset, the low one first; nothing beyond the end.
unsigned TwoBytes(StreamBytes bytes, size_t offset) {
  return bytes.size() - offset < 2 ? 0 : bytes[offset] | unsigned{bytes[offset + 1]} << 8U;
}

}  // namespace

uint64_t DecodedStreamEnd(ArgumentWords words, StreamBytes bytes) {
  return FramesEndOfId(words, 3, 55, bytes);
}

uint64_t NewDecodedStreamEnd(ArgumentWords words, StreamBytes bytes) {
  return FramesEndOfId(words, 4, 46, bytes);
}

uint64_t PackedStreamEnd(ArgumentWords /*words*/, StreamBytes bytes) {
  return FramesEnd(bytes, [&](size_t offset) {
    const auto header = static_cast<unsigned short>(TwoBytes(bytes, offset));
    return static_cast<size_t>(ParseTwoByteHeader(header));
  });
}

uint64_t PacketStreamEnd(ArgumentWords /*words*/, StreamBytes bytes) {
  return FramesEnd(bytes, [&](size_t offset) {
    const unsigned length = TwoBytes(bytes, offset);
    return length == 0 ? 0 : size_t{2} + length;
  });
}

}  // namespace harness
