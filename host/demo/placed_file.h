#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "files/sha256.h"

namespace host {

// What became of a file of the demo.
enum class Placed { kWritten, kInPlaceOfAPart, kThere, kKept };

// Writes `bytes` at `place` in a workspace, which is created where it is missing. Whatever ends the
// process, the whole file is there or nothing of it. A file that has more than a part of these
// bytes is left alone: kThere when they are the same, else kKept. Throws UsageError when it cannot
// be written. `digest`: that of the bytes, where this process is to know it without reading them;
// null for not.
Placed PlaceFile(const std::string& workspace, const std::string& place,
                 std::span<const std::byte> bytes, const FileDigest* digest = nullptr);

}  // namespace host
