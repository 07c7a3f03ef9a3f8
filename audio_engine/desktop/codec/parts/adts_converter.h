#pragma once

#include <cstddef>

namespace desktop {

// Does what TransZUStreamToAAC does, with no more whole packets than fit `maxBytes` bytes, at most
// INT_MAX. What exceeds them is left out, with one line in the log.
int ConvertToAdts(const unsigned char* data, size_t size, size_t maxBytes, unsigned char** out);

}  // namespace desktop
