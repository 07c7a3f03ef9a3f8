#pragma once

#include <cstdint>
#include <string>

namespace host {

// A number that differs for files with different content, of a regular file: of all its bytes up to
// 16 MiB, of 256 blocks of 64 KiB from its beginning to its end beyond that, so that it costs about
// the same for a file of any length. 0 for what is no regular file, or cannot be read.
uint64_t Fingerprint(const std::string& path);

}  // namespace host
