#include "audio_measures/copy_samples.h"

#include <algorithm>

namespace audio_measures {

void CopySamples(std::span<const float> samples, int64_t first, std::span<float> to) {
  const auto size = static_cast<int64_t>(samples.size());
  const auto count = static_cast<int64_t>(to.size());
  const int64_t begin = std::clamp<int64_t>(first, 0, size);
  const int64_t end = std::clamp<int64_t>(first + count, begin, size);
  std::ranges::fill(to, 0.0F);
  if (begin == end) return;
  std::copy(samples.begin() + begin, samples.begin() + end, to.begin() + (begin - first));
}

}  // namespace audio_measures
