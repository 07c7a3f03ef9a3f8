#pragma once

#include "harness/stdio_file.h"

namespace harness {

// Copies the first 44 bytes of a WAVE unchanged from `in` to `out`. Of a shorter input, what there
// is.
void CopyWavHeader(StdioFile& in, StdioFile& out);

}  // namespace harness
