#pragma once

#include <cstdint>
#include <vector>

namespace host {

// At most `most` places where stretches of `length` start that are spread over `frames`.
std::vector<int64_t> Places(int64_t frames, int64_t length, int64_t most);

// The same places, those in the middle first: signals often start and end softly.
std::vector<int64_t> FromTheMiddle(const std::vector<int64_t>& places);

}  // namespace host
