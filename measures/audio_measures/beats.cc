#include "audio_measures/beats.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace audio_measures {

namespace {

constexpr double kFirst = 5;         // s
constexpr double kTolerance = 0.07;  // s
// What two times that are written in decimals may be off.
constexpr double kRounding = 1e-9;  // s

std::vector<double> Counted(std::span<const double> beats) {
  std::vector<double> counted;
  std::ranges::copy_if(beats, std::back_inserter(counted),
                       [](double beat) { return beat >= kFirst; });
  std::ranges::sort(counted);
  return counted;
}

// From the front on, the earlier of two that do not fit has nobody later that does.
size_t Hits(std::span<const double> reference, std::span<const double> beats) {
  size_t hits = 0;
  while (!reference.empty() && !beats.empty()) {
    const double late = beats.front() - reference.front();
    const bool isEarly = late < -kTolerance - kRounding;
    const bool isLate = late > kTolerance + kRounding;
    if (!isEarly && !isLate) ++hits;
    if (!isEarly) reference = reference.subspan(1);
    if (!isLate) beats = beats.subspan(1);
  }
  return hits;
}

bool IsFinite(std::span<const double> beats) {
  return std::ranges::all_of(beats, [](double beat) { return std::isfinite(beat); });
}

}  // namespace

Figure BeatF(std::span<const double> reference, std::span<const double> beats) {
  if (!IsFinite(reference) || !IsFinite(beats)) return Unknown("beats that are not finite");
  const std::vector<double> wanted = Counted(reference);
  const std::vector<double> found = Counted(beats);
  if (wanted.empty()) return Unknown("no beat of the reference after 5 s");
  return Known(2 * static_cast<double>(Hits(wanted, found)) /
               static_cast<double>(wanted.size() + found.size()));
}

}  // namespace audio_measures
