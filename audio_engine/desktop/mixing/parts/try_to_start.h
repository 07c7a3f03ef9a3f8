#pragma once

#include <exception>

#include "desktop/platform/log.h"

namespace desktop {

// Returns what `start` returns, and false, with one line in the log, when it throws, because there
// is no memory or no thread to be had: "microphone: does not start: ...", with `what` as
// "microphone:".
template <typename Start>
bool TryToStart(const char* what, const Start& start) {
  try {
    return start();
  } catch (const std::exception& error) {
    LogRefusal("%s does not start: %s", what, error.what());
    return false;
  }
}

}  // namespace desktop
