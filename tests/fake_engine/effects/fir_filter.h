#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

// What the fake filters do, and what they were made of.
struct FirFilterScript {
  // What filter number `filter` (from 1, in the order of creation) does to one block. At first it
  // copies.
  std::function<void(int filter, const float* in, size_t length, float* out)> filter =
      [](int, const float* in, size_t length, float* out) { std::copy_n(in, length, out); };

  std::vector<std::vector<float>> coefficients = {};  // As given to each FIRFilter::Create.
  bool keepCoefficients = true;  // False where a count that no array holds is passed on purpose.
};
