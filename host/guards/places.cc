#include "guards/places.h"

#include <algorithm>
#include <cstddef>

namespace host {

std::vector<int64_t> Places(int64_t frames, int64_t length, int64_t most) {
  const int64_t count = std::clamp<int64_t>((frames + length - 1) / length, 1, most);
  std::vector<int64_t> places;
  for (int64_t i = 0; i < count; ++i) {
    places.push_back(count * length >= frames ? i * length : i * (frames - length) / (count - 1));
  }
  return places;
}

std::vector<int64_t> FromTheMiddle(const std::vector<int64_t>& places) {
  std::vector<int64_t> ordered;
  const size_t middle = places.size() / 2;
  for (size_t i = 0; i <= middle; ++i) {
    if (middle + i < places.size()) ordered.push_back(places[middle + i]);
    if (i > 0) ordered.push_back(places[middle - i]);
  }
  return ordered;
}

}  // namespace host
