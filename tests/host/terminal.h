#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

// All that a command prints on a terminal of its own, stdout and stderr together.
std::string OnTerminal(const std::vector<std::string>& command);

// Tests that need pseudo-terminals; skipped on a machine that has none (/dev/pts).
class TerminalTest : public testing::Test {
 protected:
  void SetUp() override;
};
