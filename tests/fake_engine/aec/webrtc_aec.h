#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>

// What the fake's full-band cancellers do.
struct WebrtcAecScript {
  // Makes the output of a near-end block. At first it copies.
  std::function<void(const float* near, float* out, int count)> process =
      [](const float* near, float* out, int count) { std::copy_n(near, count, out); };
};
