#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "support/captured_stderr.h"

// One call from a callback back into the engine, and whether it works there; else it is refused.
struct CallIn {
  std::string operation;
  bool works;
  std::function<bool()> call;  // Void operations answer whatever they like.
};

// A row of a table for an operation without an answer.
template <typename Call>
CallIn Refused(const char* operation, const Call& call) {
  return {operation, false, [call] {
            call();
            return false;
          }};
}

template <typename Call>
CallIn Works(const char* operation, const Call& call) {
  return {operation, true, [call] {
            call();
            return true;
          }};
}

// Makes the calls of a table in the first callback of one name, and looks for what is refused in
// the log: exactly one line for each, and none for what works.
class CallsBackIn {
 public:
  static constexpr const char* kRefused = ": refused in a callback that it would wait for";

  CallsBackIn(const CapturedStderr& log, std::string callback)
      : m_log(log), m_callback(std::move(callback)) {}

  void In(const char* callback) {
    if (callback != m_callback || m_begun.exchange(true)) return;
    for (const CallIn& in : calls) {
      EXPECT_EQ(in.call(), in.works) << in.operation << " in " << callback;
      EXPECT_EQ(LinesWith(" " + in.operation + kRefused), in.works ? 0 : 1) << in.operation;
    }
    done = true;
  }

  std::vector<CallIn> calls;
  std::atomic<bool> done = false;

 private:
  int LinesWith(const std::string& text) const {
    const std::vector<std::string> lines = m_log.Lines();
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [&](const auto& line) {
      return line.find(text) != std::string::npos;
    }));
  }

  const CapturedStderr& m_log;
  const std::string m_callback;
  std::atomic<bool> m_begun = false;
};
