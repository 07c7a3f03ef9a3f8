#include "bench/codec/whole_frame.h"

#include "bench/codec/routines.h"

namespace bench {

int WholeFrameLength(unsigned char* data, size_t size, size_t offset, int len) {
  const size_t headerBytes = len == 7 ? 6 : static_cast<size_t>(len);  // That are looked at.
  if (size < offset || size - offset < headerBytes) return 0;
  const int length = GetCodecFrameLength(data + offset, len);
  const size_t ahead = len == 4 ? 4 : 0;  // Bytes that the length does not count.
  if (length < 0 || static_cast<size_t>(length) > size - offset - ahead) return 0;
  return length;
}

}  // namespace bench
