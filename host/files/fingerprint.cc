#include "files/fingerprint.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "files/regular_file.h"

namespace host {

namespace {

constexpr off_t kBlockBytes = 64 << 10;
constexpr off_t kMaxBlocks = kMaxWhole / kBlockBytes;

// Takes eight bytes at a time in, each of which changes all bits that follow. `bytes` is a multiple
// of eight.
uint64_t Mix(uint64_t hash, const unsigned char* block, size_t bytes) {
  for (size_t i = 0; i < bytes; i += 8) {
    uint64_t word;
    memcpy(&word, block + i, sizeof word);
    hash = std::rotl((hash ^ word) * 0x9E3779B97F4A7C15U, 29);
  }
  return hash;
}

}  // namespace

uint64_t Fingerprint(const std::string& path) {
  const int file = OpenRegularDescriptor(path);
  if (file < 0) return 0;
  struct stat status = {};
  fstat(file, &status);
  const off_t length = status.st_size;
  const off_t blocks = std::min((length + kBlockBytes - 1) / kBlockBytes, kMaxBlocks);
  const bool whole = length <= kMaxBlocks * kBlockBytes;
  uint64_t hash = Mix(1, reinterpret_cast<const unsigned char*>(&length), sizeof length);
  std::vector<unsigned char> block(kBlockBytes);
  for (off_t i = 0; i < blocks; ++i) {
    const off_t at = whole ? i * kBlockBytes : (length - kBlockBytes) * i / (blocks - 1);
    const ssize_t count = pread(file, block.data(), block.size(), at);
    if (count <= 0) break;
    const size_t bytes = static_cast<size_t>(count);
    std::fill(block.begin() + count, block.end(), 0);
    hash = Mix(hash, block.data(), (bytes + 7) / 8 * 8);
  }
  close(file);
  return hash;
}

}  // namespace host
