#pragma once

#include <cstdint>

namespace bench {

// Where speech stands in the 30 clean NOIZEUS sentences, marked by hand: a row for each sentence,
// ten pairs of start and length in samples at 8 kHz. A negative start ends a row; what is not used
// of it is -1.

inline constexpr int kNoizeusRows = 30;
inline constexpr int kSegmentPairs = 10;

}  // namespace bench

extern const int32_t g_speechSegment[bench::kNoizeusRows][2 * bench::kSegmentPairs];
