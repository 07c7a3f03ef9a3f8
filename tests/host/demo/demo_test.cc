#include "demo/demo.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace host {
namespace {

// FNV-1a, 64 bits.
uint64_t Hash(const std::vector<int16_t>& samples) {
  uint64_t hash = 14695981039346656037U;
  for (const int16_t sample : samples) {
    for (const int byte : {sample & 0xFF, sample >> 8 & 0xFF}) {
      hash = (hash ^ static_cast<uint64_t>(byte)) * 1099511628211U;
    }
  }
  return hash;
}

TEST(DemoRecording, IsTheSameEverywhere) {
  EXPECT_EQ(Hash(DemoRecording()), 10090892369560670393U);
}

TEST(DemoRecording, LastsEightSecondsAndPeaksAtHalfScale) {
  const auto recording = DemoRecording();
  EXPECT_EQ(recording.size(), 8U * 44100 * 2);
  int peak = 0;
  for (const int16_t sample : recording) peak = std::max(peak, std::abs(int{sample}));
  EXPECT_EQ(peak, 16384);
}

TEST(DemoRecording, StartsAndEndsInSilence) {
  const auto recording = DemoRecording();
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_LE(std::abs(int{recording[i]}), 8);
    EXPECT_LE(std::abs(int{recording[recording.size() - 1 - i]}), 8);
  }
}

TEST(DemoRecording, IsInTune) {
  // Alone after the last chord has been plucked, the low string gives the period of 146.83 Hz.
  const auto recording = DemoRecording();
  const size_t start = 7 * 44100;
  double best = 0;
  size_t period = 0;
  for (size_t lag = 290; lag < 311; ++lag) {
    double sum = 0;
    for (size_t i = start; i < start + 8820; ++i) {
      sum += double{1} * recording[2 * i] * recording[2 * (i + lag)];
    }
    if (sum > best) period = lag;
    best = std::max(best, sum);
  }
  EXPECT_NEAR(44100.0 / static_cast<double>(period), 146.83, 0.3);
}

TEST(DemoRecording, WandersBetweenTheEars) {
  const auto recording = DemoRecording();
  double lowest = 1e9;
  double highest = -1e9;
  for (size_t second = 0; second < 8; ++second) {
    double left = 1;
    double right = 1;
    for (size_t i = second * 44100; i < (second + 1) * 44100; ++i) {
      left += std::pow(recording[2 * i], 2);
      right += std::pow(recording[2 * i + 1], 2);
    }
    const double level = 10 * std::log10(left / right);
    lowest = std::min(lowest, level);
    highest = std::max(highest, level);
  }
  EXPECT_GT(highest, 4);
  EXPECT_LT(lowest, -4);
}

}  // namespace
}  // namespace host
