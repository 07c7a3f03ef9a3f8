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
std::unique_ptr<FastFir> MakeFastFir(const float* coefficients, size_t count, size_t levels,
                                     size_t maxSamples);

}  // namespace desktop
