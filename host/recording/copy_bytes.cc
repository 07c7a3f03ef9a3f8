#include "recording/copy_bytes.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "files/audio_figures.h"
#include "files/new_file.h"

namespace host {

std::optional<RecordingFault> CopyBytes(int from, int to, const std::function<bool()>& goOn) {
  using Kind = RecordingFault::Kind;
  if (ftruncate(to, 0) != 0 || lseek(to, 0, SEEK_SET) != 0) {
    return RecordingFault{Kind::kOutput, strerror(errno)};
  }
  std::vector<char> block(1 << 16);
  off_t at = 0;
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
