#pragma once

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

constexpr int kMaxHeaderBytes = 7;
constexpr int kMaxFrameBytes = kMaxHeaderBytes + kMaxPacketBytes;

// Where a packet stands in the bytes of a stream.
struct FrameSpan {
  enum State { kWhole, kIncomplete, kNoFrame };
  State state = kNoFrame;
  int frameBytes = 0;    // Header and packet.
  int packetOffset = 0;  // From the start of the frame.
  int packetBytes = 0;
};

// The header in front of each packet of one codec: ADTS (ISO/IEC 14496-3, 1.A.2), or a 2-byte word
// and the raw id, or none.
class FrameHeader {
 public:
  explicit FrameHeader(const CodecSetup& setup);

  // False when the header cannot express the codec's rate.
  bool IsValid() const { return m_framing != Framing::kAdts || m_rateIndex >= 0; }

  int bytes() const;

  // Writes bytes() bytes in front of a packet of `packetBytes` bytes, at most kMaxPacketBytes.
  void Write(unsigned char* header, int packetBytes) const;

  // Looks at the frame that starts at `data`. kIncomplete when it, or its header, needs more than
  // `size` bytes; kNoFrame when no frame of this codec starts there.
  FrameSpan Read(const unsigned char* data, int size) const;

 private:
  FrameSpan ReadTwoByte(const unsigned char* data, int size) const;
  FrameSpan ReadAdts(const unsigned char* data, int size) const;
  bool Takes(int rawId) const;

  const Framing m_framing;
  const int m_rawId;
  const int m_rateIndex;  // ADTS: of the core coder's rate, -1 when the rate has none.
  const int m_channels;   // ADTS: of the core coder.
};

// The raw id of the frame with a 2-byte header that starts at `data`; -1 when there is none, or it
// has no payload.
int RawIdAt(const unsigned char* data, int size);

// Looks at the ADTS frame at `data`, whatever its rate and channels.
FrameSpan ReadAnyAdts(const unsigned char* data, int size);

}  // namespace desktop
