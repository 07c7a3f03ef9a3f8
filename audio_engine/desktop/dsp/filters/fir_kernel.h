#pragma once

#include <cstddef>

namespace desktop {

// How many floats after the end of the input Convolve may read; their values do not matter.
inline constexpr size_t kConvolveOverread = 16;

// The few coefficients that a sum owes most of its size to, each rounded so that their part of it
// is exact. The rest of them stays in its place among the others, where sums are small and round
// little.
inline constexpr size_t kLoudTaps = 4;
struct LoudTaps {
  size_t at[kLoudTaps];
  float value[kLoudTaps];
};

// The inner loop of a direct-form FIR filter, for the best vector instructions of the machine:
// out[n] = coefficients[0] * in[n] + ... + coefficients[count - 1] * in[n - (count - 1)] for
// n = 0..length - 1, and where `loud` is given, loud.value[i] * in[n - loud.at[i]] as well, with
// loud.at[i] < count. in: preceded by count - 1 earlier samples and followed by kConvolveOverread
// readable floats. The arrays do not overlap.
//
// The order of the operations for an output sample depends on the coefficients, not on its
// position: a signal that is cut into calls elsewhere gives the same bits. From one set of
// instructions to another the last bits may differ, as sums are grouped by vector length and a
// multiply-add is fused only where there is an instruction for it.
void Convolve(const float* in, size_t length, const float* coefficients, size_t count,
              const LoudTaps* loud, float* out);

}  // namespace desktop
