#pragma once

#include <cstddef>

#include "../common/visibility.h"

namespace zuwebrtc {

// A finite impulse response filter over one channel of float samples. Belongs to one thread at a
// time; the slot order of the virtual operations is fixed.
class ENGINE_API FIRFilter {
 public:
  virtual ~FIRFilter() = default;

  // Filters `length` samples of `in` into `out` (the same array or one that does not overlap). The
  // history is kept from call to call, so that consecutive calls form one continuous convolution.
  virtual void Filter(const float* in, size_t length, float* out) = 0;

  // Replaces the coefficients by a copy of `count` others and keeps the history.
  virtual void UpdateCoeffients(const float* coefficients, size_t count) = 0;

  // A new filter with a copy of `count` coefficients (the first belongs to the newest sample),
  // owned by the caller. max_input_length: the largest length that one Filter call will pass. No
  // coefficients make a filter of silence.
  static FIRFilter* Create(const float* coefficients, size_t count, size_t max_input_length);
};

}  // namespace zuwebrtc
