#pragma once

#include <cstdint>
#include <string>

namespace host {

// Files up to so many bytes are read whole.
inline constexpr uint64_t kMaxWhole = 16 << 20;

// Returns a number that differs for regular files with different content. It is made of all bytes
// of a file of up to 16 MiB, and of 256 blocks of 64 KiB from the beginning to the end of a longer
// one, so that it costs about the same for any length. Returns 0 for what is no regular file or
// cannot be read.
uint64_t Fingerprint(const std::string& path);

}  // namespace host
