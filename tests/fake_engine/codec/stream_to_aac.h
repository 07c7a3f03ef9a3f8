#pragma once

#include <functional>
#include <string>

// What the fake makes of a stream.
struct StreamToAacScript {
  // The result, copied into memory that lives as long as the process. At first none.
  std::function<std::string(const std::string& stream)> convert = [](const std::string&) {
    return std::string();
  };
};
