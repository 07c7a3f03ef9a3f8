#pragma once

#include <cstddef>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

constexpr size_t kMaxHeaderBytes = 7;
constexpr size_t kMaxPacketBytes = kMaxHeaderBytes + kMaxPayloadBytes;

// Where a packet stands in the bytes of a stream.
struct PacketSpan {
  enum State { kWhole, kIncomplete, kNoPacket };
  State state = kNoPacket;

  // The header and the payload together.
  size_t packetBytes = 0;

  // The payload's first byte, counted from the start of the packet, and its length.
  size_t payloadOffset = 0;
  size_t payloadBytes = 0;
};

// The header in front of each payload of one codec: ADTS (ISO/IEC 14496-3, 1.A.2), or a 2-byte word
// and the raw id, or none.
class PacketHeader {
 public:
  explicit PacketHeader(const CodecSetup& setup);

  // False when the header cannot express the codec's rate.
  bool IsValid() const { return m_framing != Framing::kAdts || m_rateIndex >= 0; }

  size_t bytes() const;

  // Writes bytes() bytes, the header of a payload of `payloadBytes` bytes, at most
  // kMaxPayloadBytes.
  void Write(unsigned char* header, size_t payloadBytes) const;

  // Looks at the packet that starts at `data`. kIncomplete when it, or its header, needs more than
  // `size` bytes; kNoPacket when no packet of this codec starts there.
  PacketSpan Read(const unsigned char* data, size_t size) const;

 private:
  PacketSpan ReadTwoByte(const unsigned char* data, size_t size) const;
  PacketSpan ReadAdts(const unsigned char* data, size_t size) const;
  bool Takes(int rawId) const;

  const Framing m_framing;
  const int m_rawId;

  // What ADTS says of the core coder: its rate, -1 when the header knows no such rate, and its
  // channels.
  const int m_rateIndex;
  const int m_channels;
};

// The raw id of the packet with a 2-byte header that starts at `data`; -1 when there is none, or it
// has no payload.
int RawIdAt(const unsigned char* data, size_t size);

// Looks at the ADTS packet at `data`, whatever its rate and channels.
PacketSpan ReadAnyAdts(const unsigned char* data, size_t size);

}  // namespace desktop
