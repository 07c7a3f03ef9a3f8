#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// All that a command prints on a terminal of its own, stdout and stderr together.
std::string OnTerminal(const std::vector<std::string>& command);

// The same of a piece of this program, which runs in a process of its own.
std::string OnTerminal(const std::function<void()>& work);

// The same of a command that gets a signal as soon as it has printed `text`.
std::string OnTerminalUntil(std::string_view text, int signal,
                            const std::vector<std::string>& command);

// Tests that need pseudo-terminals; skipped on a machine that has none (/dev/pts).
class TerminalTest : public testing::Test {
 protected:
  void SetUp() override;
};
