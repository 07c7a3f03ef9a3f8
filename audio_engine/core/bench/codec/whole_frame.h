#pragma once

#include <cstddef>

namespace bench {

// The length of the frame at data + offset as GetCodecFrameLength reads it in the header style
// `len`. 0 where no whole frame stands: its header, or the frame itself, reaches past the `size`
// bytes, or the length is negative.
int WholeFrameLength(unsigned char* data, size_t size, size_t offset, int len);

}  // namespace bench
