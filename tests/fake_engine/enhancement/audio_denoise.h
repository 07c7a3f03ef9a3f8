#pragma once

#include <functional>

// What the fake's suppressors do.
struct DenoiseScript {
  // At first a block stays as it is. `samples` are what a block of 10 ms has.
  std::function<void(short* block, int samples)> process = [](short*, int) {};
};
