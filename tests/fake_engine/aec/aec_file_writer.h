#pragma once

#include <functional>

// What becomes of what the fake's recorders are given.
struct AecFileWriterScript {
  std::function<void(const void* data, int bytes)> farend = [](const void*, int) {};
  std::function<void(const void* data, int bytes)> out = [](const void*, int) {};
};
