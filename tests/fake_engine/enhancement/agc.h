#pragma once

#include <cstdint>
#include <functional>

#include "engine_api/enhancement/agc.h"

// What the fake's gain controls do, and how they were configured.
struct AgcScript {
  // Changes a block in place and gives the level that the microphone is said to have.
  std::function<int32_t(int16_t* samples, int count)> virtualMic = [](int16_t*, int) { return 0; };
  std::function<int32_t(int16_t* samples, int count)> process = [](int16_t*, int) { return 0; };
};
