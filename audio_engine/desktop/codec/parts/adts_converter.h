#pragma once

#include <cstddef>

namespace desktop {

// TransZUStreamToAAC, with at most the whole frames that fit `most` bytes, which an int holds. What
// exceeds them is left out, with one line in the log.
int ConvertToAdts(const unsigned char* data, int size, size_t most, unsigned char** out);

}  // namespace desktop
