#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace desktop {

// Whether the file, from its start, holds AAC frames with ADTS headers (ISO/IEC 14496-3, 1.A.2),
// perhaps after an ID3 tag.
bool IsAdts(FILE* file);

// Walks over the ADTS frames of a file. What is no frame is passed over; a frame counts when
// another follows it or the file ends there.
class AdtsReader {
 public:
  explicit AdtsReader(FILE* file);  // From its start. The file stays the caller's.

  // Points `frame` to the next frame, header included, and returns its bytes; 0 at the end.
  size_t Next(const unsigned char** frame);

  // Where the last frame that was given ends in the file; 0 before the first.
  uint64_t End() const { return m_end; }

 private:
  static constexpr size_t kHeaderBytes = 7;
  static constexpr size_t kMaxFrameBytes = (1 << 13) - 1;

  void Fill();
  bool IsConfirmed(size_t frameBytes) const;

  FILE* const m_file;
  unsigned char m_bytes[4 * (kMaxFrameBytes + kHeaderBytes)];
  size_t m_at = 0;        // The next byte in it
  size_t m_count = 0;     // of so many.
  uint64_t m_before = 0;  // The file's bytes ahead of m_bytes.
  uint64_t m_end = 0;
};

}  // namespace desktop
