#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "files/sha256_rounds.h"

namespace host {

// SHA-256 of a sequence of bytes (FIPS 180-4, 6.2).
class Sha256 {
 public:
  void Add(std::span<const unsigned char> bytes);

  // Returns 64 hexadecimal digits, lower case. It is called once, at the end.
  std::string Digest();

 private:
  Sha256State m_state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::array<unsigned char, 64> m_block = {};
  size_t m_waiting = 0;  // Bytes in m_block.
  uint64_t m_bytes = 0;
};

struct FileDigest {
  std::string digest = {};
  uint64_t bytes = 0;
  std::string fault = {};  // Why there is none; kStopped when it was given up.
};

// Returns the digest of an open file from its beginning to its end, wherever it is read at the
// moment. Gives up as soon as `goOn` returns false.
FileDigest DigestOf(int file, const std::function<bool()>& goOn);

}  // namespace host
