#include "engine_api/codec/two_byte_header.h"

int ParseTwoByteHeader(unsigned short header) {
  constexpr int kMark = 0xfc00;
  return (header & kMark) == kMark ? (header & 0x3ff) + 2 : 0;
}
