#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace desktop {

// Returns whether the file, from its start, holds AAC packets with ADTS headers (ISO/IEC 14496-3,
// 1.A.2), perhaps after an ID3 tag.
bool IsAdts(FILE* file);

// Walks over the ADTS packets of a file. What is no packet is passed over; a packet counts when
// another follows it or the file ends there.
class AdtsReader {
 public:
  // Starts at the start of the file, which stays the caller's.
  explicit AdtsReader(FILE* file);

  // Points `packet` to the next packet and returns its length in bytes; 0 at the end.
  size_t Next(const unsigned char** packet);

  // Returns where in the file the last packet ends that was given; 0 before the first.
  uint64_t End() const { return m_end; }

 private:
  static constexpr size_t kHeaderBytes = 7;
  static constexpr size_t kMaxPacketBytes = (1 << 13) - 1;

  void Fill();
  bool IsConfirmed(size_t packetBytes) const;

  FILE* const m_file;
  unsigned char m_bytes[4 * (kMaxPacketBytes + kHeaderBytes)];
  // Of the m_count bytes in m_bytes, the one to be read next.
  size_t m_at = 0;
  size_t m_count = 0;
  // How many bytes of the file come before m_bytes.
  uint64_t m_before = 0;
  uint64_t m_end = 0;
};

}  // namespace desktop
