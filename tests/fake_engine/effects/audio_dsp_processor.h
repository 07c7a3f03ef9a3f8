#pragma once

#include <functional>

// What the fake processors do.
struct AudioDspProcessorScript {
  // To each block of 16-bit samples; at first nothing.
  std::function<void(short* samples, int count)> process = [](short*, int) {};
};
