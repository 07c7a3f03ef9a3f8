#pragma once

#include <cstddef>
#include <memory>

namespace desktop {

// A convolution that goes on from call to call, sample for sample: an output needs no later sample,
// and neither its time nor its bits depend on where the calls are cut.
class FirStage {
 public:
  virtual ~FirStage() = default;

  // Where the next `samples` samples go, at most as many as the stage was made for. kPairSlack
  // floats after them may be overwritten as well.
  virtual float* Place(size_t samples) = 0;

  // Filters the samples that were put there into as many outputs.
  virtual void Filter(size_t samples, float* out) = 0;
};

// A filter of `count` coefficients, a multiple of 2^levels and not 0, for calls of at most
// maxSamples samples. Each of at least one level saves a quarter of the multiplications. An
// infinite sample does not reach further than the coefficients do. Throws when there is no memory.
std::unique_ptr<FirStage> MakeFastFir(const float* coefficients, size_t count, size_t levels,
                                      size_t maxSamples);

}  // namespace desktop
