#pragma once

#include <gtest/gtest.h>

#include <regex>

#include "support/captured_stderr.h"

// Plays through `run()` until no device or player was late in it, by the engine's log, at most four
// times; a machine that is busy with other things gets another chance. False when it never was in
// time.
template <typename Run>
bool RunInTime(const Run& run) {
  const std::regex late("[1-9][0-9]* ((under|over)runs|blocks of 10 ms came too late)");
  for (int i = 0; i < 4; ++i) {
    const CapturedStderr log;
    run();
    if (testing::Test::HasFatalFailure() || !std::regex_search(log.Text(), late)) return true;
  }
  return false;
}
