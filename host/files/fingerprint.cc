#include "files/fingerprint.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

#include "files/regular_file.h"

namespace host {

namespace {

constexpr off_t kBlockBytes = 64 << 10;
constexpr off_t kMaxBlocks = kMaxWhole / kBlockBytes;

// Words are taken in by so many hashes side by side, none of which waits for another.
constexpr size_t kLanes = 4;
constexpr size_t kStride = kLanes * sizeof(uint64_t);
static_assert(kBlockBytes % kStride == 0, "blocks are whole strides");

// Takes a word in, each bit of which changes all that follow.
uint64_t Mix(uint64_t hash, uint64_t word) {
  return std::rotl((hash ^ word) * 0x9E3779B97F4A7C15U, 29);
}

// `bytes` is a multiple of kStride.
uint64_t MixBlock(uint64_t hash, const unsigned char* block, size_t bytes) {
  std::array<uint64_t, kLanes> lanes = {hash, hash + 1, hash + 2, hash + 3};
  for (size_t i = 0; i < bytes; i += kStride) {
    std::array<uint64_t, kLanes> words;
    memcpy(words.data(), block + i, sizeof words);
    for (size_t lane = 0; lane < kLanes; ++lane) lanes[lane] = Mix(lanes[lane], words[lane]);
  }
  for (const uint64_t lane : lanes) hash = Mix(hash, lane);
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
  uint64_t hash = Mix(1, static_cast<uint64_t>(length));
  std::vector<unsigned char> block(kBlockBytes);
  for (off_t i = 0; i < blocks; ++i) {
    const off_t at = whole ? i * kBlockBytes : (length - kBlockBytes) * i / (blocks - 1);
    const ssize_t count = pread(file, block.data(), block.size(), at);
    if (count <= 0) break;
    const size_t bytes = static_cast<size_t>(count);
    std::fill(block.begin() + count, block.end(), 0);
    hash = MixBlock(hash, block.data(), (bytes + kStride - 1) / kStride * kStride);
  }
  close(file);
  return hash;
}

}  // namespace host
