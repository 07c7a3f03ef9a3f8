#pragma once

#include <functional>

// What the fake's delay estimators say.
struct EchoDelayEstScript {
  std::function<int()> delay = [] { return 0; };  // ms
};
