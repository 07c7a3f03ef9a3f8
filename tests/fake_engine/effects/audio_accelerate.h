#pragma once

#include <functional>

// What the fake accelerators do.
struct AudioAccelerateScript {
  // To each block; answers how many samples per channel are left. At first all, unchanged.
  std::function<int(short* samples, int samplesPerChannel, int channels)> process =
      [](short*, int samplesPerChannel, int) { return samplesPerChannel; };
};
