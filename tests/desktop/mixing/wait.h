#pragma once

#include <chrono>
#include <thread>

// Waits until `done()`, for 20 s at most. False when it did not come.
template <typename Done>
bool WaitUntil(const Done& done) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!done()) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}
