#pragma once

#include <functional>

// The fake table's answers.
struct MitHrtfScript {
  unsigned availability = 0;

  // Fills both ears, may move the position, gives the number of taps. At first: one impulse at full
  // scale for each ear, at the position asked for.
  std::function<unsigned(int* azimuth, int* elevation, short* left, short* right)> get =
      [](int*, int*, short* left, short* right) {
        left[0] = right[0] = 32767;
        return 1U;
      };
};
