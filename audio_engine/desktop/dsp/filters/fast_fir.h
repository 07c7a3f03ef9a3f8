#pragma once

#include <cstddef>
#include <memory>

namespace desktop {

// A convolution that goes on from call to call, sample for sample: an output needs no later sample,
// and neither its time nor its bits depend on where the calls are cut.
class FastFir {
 public:
  virtual ~FastFir() = default;

  // Filters `samples` samples, at most as many as the filter was made for, into as many outputs.
  // The input is followed by kPairSlack readable floats whose values do not matter. The arrays do
  // not overlap.
  virtual void Filter(const float* in, size_t samples, float* out) = 0;
};

// A filter of `count` coefficients, a multiple of 2^levels and not 0, for calls of at most
// maxSamples samples. Each of at least one level saves a quarter of the multiplications. An
// infinite sample does not reach further than the coefficients do. Throws when there is no memory.
//
// With two levels an output is off by at most 2e-7 of the loudest one that any samples up to full
// scale can make, which is the sum of the coefficients' magnitudes: all sums on the way to a soft
// output can be as loud as that. Of samples of 16 bits, made so soft that the output of a
// head-related response just reaches full scale, it is off by at most 2e-7 of full scale. That does
// not hold of every input: a response that is four times as loud as its input at 3 kHz is off by
// 6e-7 of full scale for a tone at 9 kHz and by 1.3e-6 for one at 15 kHz.
std::unique_ptr<FastFir> MakeFastFir(const float* coefficients, size_t count, size_t levels,
                                     size_t maxSamples);

}  // namespace desktop
