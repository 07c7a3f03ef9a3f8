#include "controls/damage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace controls {

namespace {

constexpr int kReach = 64;  // Samples to either side.

// A sinc in a Hann window.
double Weight(double distance, double cutOff) {
  const double angle = std::numbers::pi * distance;
  const double window = 0.5 + 0.5 * std::cos(angle / (kReach + 1));
  return (distance == 0 ? cutOff : std::sin(angle * cutOff) / angle) * window;
}

}  // namespace

short ToSample(double value) {
  return static_cast<short>(std::lround(std::clamp(value, -32768.0, 32767.0)));
}

void Resample(std::vector<short>& samples, int channels, double step, double offset,
              double cutOff) {
  const auto width = static_cast<long>(channels);
  const long frames = static_cast<long>(samples.size()) / width;
  std::vector<short> made;
  made.reserve(samples.size());
  for (long i = 0; static_cast<double>(i) * step < static_cast<double>(frames); ++i) {
    const double place = static_cast<double>(i) * step + offset;
    const long nearest = std::lround(place);
    const long first = std::max(0L, nearest - kReach);
    const long last = std::min(frames - 1, nearest + kReach);
    for (long channel = 0; channel < width; ++channel) {
      double sum = 0;
      for (long k = first; k <= last; ++k) {
        sum += samples[static_cast<size_t>(k * width + channel)] *
               Weight(place - static_cast<double>(k), cutOff);
      }
      made.push_back(ToSample(sum));
    }
  }
  samples = std::move(made);
}

}  // namespace controls
