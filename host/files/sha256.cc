#include "files/sha256.h"

#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <vector>

#include "files/audio_figures.h"

namespace host {

namespace {

constexpr std::array<uint32_t, 64> kRounds = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t BigEndian(const unsigned char* bytes) {
  return uint32_t{bytes[0]} << 24U | uint32_t{bytes[1]} << 16U | uint32_t{bytes[2]} << 8U |
         uint32_t{bytes[3]};
}

}  // namespace

void Sha256::Add(std::span<const unsigned char> bytes) {
  m_bytes += bytes.size();
  while (!bytes.empty()) {
    const size_t part = std::min(bytes.size(), m_block.size() - m_waiting);
    std::copy_n(bytes.begin(), part, m_block.begin() + static_cast<ptrdiff_t>(m_waiting));
    m_waiting += part;
    bytes = bytes.subspan(part);
    if (m_waiting < m_block.size()) return;
    TakeBlock(m_block.data());
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

void Sha256::TakeBlock(const unsigned char* block) {
  std::array<uint32_t, 64> words = {};
  for (size_t i = 0; i < 16; ++i) words[i] = BigEndian(block + 4 * i);
  for (size_t i = 16; i < words.size(); ++i) {
    const uint32_t early = words[i - 15];
    const uint32_t late = words[i - 2];
    words[i] = words[i - 16] + words[i - 7] +
               (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3U) +
               (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10U);
  }
  auto [a, b, c, d, e, f, g, h] = m_state;
  for (size_t i = 0; i < words.size(); ++i) {
    const uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                           ((e & f) ^ (~e & g)) + kRounds[i] + words[i];
    const uint32_t second =
        (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const std::array<uint32_t, 8> added = {a, b, c, d, e, f, g, h};
  for (size_t i = 0; i < added.size(); ++i) m_state[i] += added[i];
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
