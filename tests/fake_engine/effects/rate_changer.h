#pragma once

#include <functional>
#include <string>

// What the fake rate changers do.
struct RateChangerScript {
  // To each block. At first its bytes are appended, as an engine may take `out` for.
  std::function<void(const short* samples, int count, std::string& out)> process =
      [](const short* samples, int count, std::string& out) {
        out.append(reinterpret_cast<const char*>(samples),
                   static_cast<size_t>(count) * sizeof(short));
      };
};
