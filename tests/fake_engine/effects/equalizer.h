#pragma once

#include <functional>

// What the fake equalisers do.
struct EqualizerScript {
  // To each block of 16-bit samples; at first nothing.
  std::function<void(short* samples, int count)> process = [](short*, int) {};
};
