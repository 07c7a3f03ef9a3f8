#pragma once

#include <cstdint>

#include "harness/stdio_file.h"

namespace bench {

// Puts two files of 16-bit samples so that the same moments meet: `processed` lags `clean` by
// `shift` samples, or leads it when that is negative.
inline void Align(harness::StdioFile& clean, harness::StdioFile& processed, int32_t shift) {
  clean.Seek(shift < 0 ? -2L * shift : 0, SEEK_SET);
  processed.Seek(shift < 0 ? 0 : 2L * shift, SEEK_SET);
}

}  // namespace bench
