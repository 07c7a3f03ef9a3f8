#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>

// What the fake's cancellers for handheld devices do.
struct AecMobileScript {
  // Makes the lowest band of the output. At first it copies.
  std::function<void(const int16_t* near, int16_t* out, int count)> process =
      [](const int16_t* near, int16_t* out, int count) { std::copy_n(near, count, out); };

  // Leaves *status as it finds it when it answers with a negative number.
  std::function<int()> echoState = [] { return -1; };
  std::function<int()> delay = [] { return 0; };  // ms
};
