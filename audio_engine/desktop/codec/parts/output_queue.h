#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "desktop/codec/parts/packet_header.h"

namespace desktop {

// Hands units of bytes (packets, or frames) over to a caller whose room may be too small
// for them: what does not fit waits for its next call. Allocates nothing after construction.
class OutputQueue {
 public:
  // For packets with this header.
  explicit OutputQueue(const PacketHeader& header);

  // For frames of `unitBytes` bytes.
  explicit OutputQueue(size_t unitBytes);

  // Starts a call with `room` bytes at `out`, with what waited.
  void Begin(unsigned char* out, size_t room);

  // Takes one packet, or any number of frames. False when too much waits and some were dropped.
  bool Add(const unsigned char* data, size_t bytes);

  // Bytes written since Begin.
  size_t given() const { return m_given; }

 private:
  size_t Fitting(size_t bytes) const;
  void Give(const unsigned char* data, size_t bytes);

  const std::optional<PacketHeader> m_header;
  const size_t m_unitBytes;
  std::vector<unsigned char> m_waiting;
  unsigned char* m_out = nullptr;
  size_t m_room = 0;
  size_t m_given = 0;
};

}  // namespace desktop
