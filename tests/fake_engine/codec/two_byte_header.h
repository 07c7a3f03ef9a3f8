#pragma once

#include <functional>

// The fake's reading of header words. At first the word is the length.
struct TwoByteHeaderScript {
  std::function<int(unsigned short header)> parse = [](unsigned short header) { return header; };
};
