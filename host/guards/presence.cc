#include "guards/presence.h"

#include <algorithm>
#include <cmath>

#include "guards/thresholds.h"
#include "guards/track.h"

namespace host {

namespace {

constexpr int kBlocksPerSecond = 200;
constexpr size_t kParts = 5;         // Of a block.
constexpr double kBelowActive = 15;  // dB that a block may lie below the active level,
constexpr double kPartBelow = 35;    // and a part of it.

double Power(double decibels) { return std::pow(10, decibels / 10); }

}  // namespace

Presence::Presence(const Signal& signal, int channel, double activeLevel) {
  const auto length = std::max<size_t>(
      kParts, static_cast<size_t>(signal.rate / kBlocksPerSecond) / kParts * kParts);
  const auto part = length / kParts;
  m_rate = signal.rate / static_cast<double>(length);
  const double least = Power(std::max(kHeardLevel, activeLevel - kBelowActive));
  const double leastOfPart = Power(activeLevel - kPartBelow);
  const Track track(signal, signal.rate);
  std::vector<float> block(length);
  uint32_t unbroken = 0;
  for (size_t first = 0; first + length <= signal.Frames(); first += length) {
    track.Read(channel, static_cast<int64_t>(first), block);
    double sum = 0;
    double softest = INFINITY;
    for (size_t i = 0; i < kParts; ++i) {
      double squares = 0;
      for (const float sample : std::span(block).subspan(i * part, part)) {
        squares += static_cast<double>(sample) * static_cast<double>(sample);
      }
      sum += squares;
      softest = std::min(softest, squares);
    }
    const bool present = sum >= least * static_cast<double>(length) &&
                         softest >= leastOfPart * static_cast<double>(part);
    unbroken = present ? unbroken + 1 : 0;
    m_unbroken.push_back(unbroken);
  }
}

bool Presence::Throughout(double from, double to) const {
  const auto first = static_cast<int64_t>(std::floor(from * m_rate));
  const auto last = static_cast<int64_t>(std::floor(to * m_rate));
  if (first < 0 || last >= static_cast<int64_t>(m_unbroken.size())) return false;
  return static_cast<int64_t>(m_unbroken[static_cast<size_t>(last)]) > last - first;
}

}  // namespace host
