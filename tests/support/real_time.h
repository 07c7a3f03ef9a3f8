#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

// What a test in real time says of time, and what the machine could do meanwhile: a thread that
// only sleeps, 5 ms at a time, notes how late it was woken at the worst.
class InRealTime {
 public:
  InRealTime() : m_thread([this] { Measure(); }) {}
  ~InRealTime() { End(); }
  InRealTime(const InRealTime&) = delete;
  InRealTime& operator=(const InRealTime&) = delete;

  // `good` is something that a machine with other work may make false. Returns it.
  bool Expect(bool good, const std::string& what) {
    if (!good) m_missed += (m_missed.empty() ? "" : "; ") + what;
    return good;
  }

  // Ends the measurement. What was not as expected makes the test fail on a machine that was in
  // time, and else skips what is left of it, with the figure.
  void Judge() {
    End();
    if (m_missed.empty()) return;
    const int64_t lateMs = m_worst / 1'000'000;
    if (lateMs <= kInTimeMs) {
      ADD_FAILURE() << m_missed << "; and the machine was " << lateMs << " ms late at the most";
    } else {
      GTEST_SKIP() << m_missed << "; but the machine was " << lateMs << " ms late itself";
    }
  }

 private:
  static constexpr int64_t kInTimeMs = 5;

  void End() {
    m_ends = true;
    if (m_thread.joinable()) m_thread.join();
  }

  void Measure() {
    using std::chrono::steady_clock;
    while (!m_ends) {
      const auto due = steady_clock::now() + std::chrono::milliseconds(5);
      std::this_thread::sleep_until(due);
      m_worst = std::max<int64_t>(m_worst, (steady_clock::now() - due).count());
    }
  }

  std::string m_missed;
  std::atomic<bool> m_ends = false;
  std::atomic<int64_t> m_worst = 0;  // Nanoseconds.
  std::thread m_thread;
};
