#pragma once

#include <functional>

// What the fake compressors do.
struct DrcScript {
  // To each block; at first nothing.
  std::function<void(short* samples, int count)> process = [](short*, int) {};
};
