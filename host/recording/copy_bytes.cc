#include "recording/copy_bytes.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "files/audio_figures.h"
#include "files/new_file.h"

namespace host {

namespace {

// Lets the kernel copy, which on some file systems makes both files share their blocks until one of
// them is written to. Returns how far it came: to the end, or to where it cannot go on, as between
// two file systems of different kinds.
off_t CopyInKernel(int from, int to, const std::function<bool()>& goOn) {
  constexpr size_t kMost = size_t{64} << 20;
  off_t at = 0;
  while (goOn() && copy_file_range(from, &at, to, nullptr, kMost, 0) > 0) {
  }
  return at;
}

}  // namespace

std::optional<RecordingFault> CopyBytes(int from, int to, const std::function<bool()>& goOn) {
  using Kind = RecordingFault::Kind;
  if (!StartAnew(to)) {
    return RecordingFault{Kind::kOutput, strerror(errno)};
  }
  off_t at = CopyInKernel(from, to, goOn);
  // What is left is read and written; where that is nothing, this finds the end.
  std::vector<char> block(1 << 16);
  while (goOn()) {
    const ssize_t count = pread(from, block.data(), block.size(), at);
    if (count < 0)
      return RecordingFault{Kind::kInput, std::string("cannot be read: ") + strerror(errno)};
    if (count == 0) return std::nullopt;
    if (!WriteAll(to, block.data(), static_cast<size_t>(count))) {
      return RecordingFault{Kind::kOutput, strerror(errno)};
    }
    at += count;
  }
  return RecordingFault{Kind::kStopped, kStopped};
}

}  // namespace host
