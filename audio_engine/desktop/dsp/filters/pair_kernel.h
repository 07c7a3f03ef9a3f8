#pragma once

#include <cstddef>

namespace desktop {

// How many floats after the end of the input SplitPairs may read and after the end of its outputs
// it may write.
inline constexpr size_t kPairSlack = 32;

// Takes `pairs` pairs of neighbouring samples apart: even[k] = in[2 k], odd[k] = in[2 k + 1],
// difference[k] = odd[k] - even[k]. The arrays do not overlap, and each is followed by kPairSlack
// floats whose values do not matter.
void SplitPairs(const float* in, size_t pairs, float* even, float* odd, float* difference);

// Puts the outputs of the three filters of a fast FIR step together: out[2 k] = even[k] + odd[k],
// out[2 k + 1] = (even[k] + odd[k + 1]) + difference[k]. The arrays do not overlap.
void JoinPairs(const float* even, const float* odd, const float* difference, size_t pairs,
               float* out);

}  // namespace desktop
