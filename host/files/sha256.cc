#include "files/sha256.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "files/audio_figures.h"
#include "files/sha256_rounds.h"

namespace host {

void Sha256::Add(std::span<const unsigned char> bytes) {
  m_bytes += bytes.size();
  while (!bytes.empty()) {
    if (m_waiting == 0 && bytes.size() >= m_block.size()) {
      const size_t blocks = bytes.size() / m_block.size();
      TakeSha256Blocks(m_state, bytes.data(), blocks);
      bytes = bytes.subspan(blocks * m_block.size());
      continue;
    }
    const size_t part = std::min(bytes.size(), m_block.size() - m_waiting);
    std::copy_n(bytes.begin(), part, m_block.begin() + static_cast<ptrdiff_t>(m_waiting));
    m_waiting += part;
    bytes = bytes.subspan(part);
    if (m_waiting < m_block.size()) return;
    TakeSha256Blocks(m_state, m_block.data(), 1);
    m_waiting = 0;
  }
}

std::string Sha256::Digest() {
  const uint64_t bits = m_bytes * 8;
  std::vector<unsigned char> end = {0x80};
  while ((m_bytes + end.size()) % m_block.size() != m_block.size() - 8) end.push_back(0);
  for (int shift = 56; shift >= 0; shift -= 8) {
    end.push_back(static_cast<unsigned char>(bits >> static_cast<unsigned>(shift)));
  }
  Add(end);
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (const uint32_t word : m_state) {
    for (int shift = 28; shift >= 0; shift -= 4) {
      text += kDigits[word >> static_cast<unsigned>(shift) & 0xFU];
    }
  }
  return text;
}

FileDigest DigestOf(int file, const std::function<bool()>& goOn) {
  FileDigest made;
  Sha256 hash;
  std::vector<unsigned char> block(1 << 16);
  while (goOn()) {
    const ssize_t count = pread(file, block.data(), block.size(), static_cast<off_t>(made.bytes));
    if (count < 0) return {.fault = strerror(errno)};
    if (count == 0) {
      made.digest = hash.Digest();
      return made;
    }
    hash.Add({block.data(), static_cast<size_t>(count)});
    made.bytes += static_cast<uint64_t>(count);
  }
  return {.fault = kStopped};
}

}  // namespace host
