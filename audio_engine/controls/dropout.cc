// A drop-out of 5 ms, around the loudest sample.

#include <algorithm>
#include <cstdlib>

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int rate) {
  const auto loudest = std::max_element(samples.begin(), samples.end(), [](short a, short b) {
    return std::abs(int{a}) < std::abs(int{b});
  });
  const long frames = static_cast<long>(samples.size()) / channels;
  const long length = rate / 200;
  const long middle = (loudest - samples.begin()) / channels;
  const long first = std::max(0L, middle - length / 2);
  const long last = std::min(frames, first + length);
  std::fill(samples.begin() + first * channels, samples.begin() + last * channels, short{0});
}
