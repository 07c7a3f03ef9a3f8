#include "desktop/codec/parts/packet_header.h"

#include "desktop/common/counts.h"
#include "engine_api/codec/two_byte_header.h"

namespace desktop {

namespace {

// The word and the raw id, which the length in the word includes.
constexpr size_t kTwoByteHeaderBytes = 3;
constexpr size_t kAdtsHeaderBytes = 7;
constexpr int kRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                          22050, 16000, 12000, 11025, 8000,  7350};

int RateIndex(int rate) {
  int index = 0;
  for (const int known : kRates) {
    if (known == rate) return index;
    ++index;
  }
  return -1;
}

// Band replication codes half the rate, parametric stereo one channel.
int CoreRate(const CodecSetup& setup) {
  return setup.variant->coder == Coder::kAacLc ? setup.rate : setup.rate / 2;
}

int CoreChannels(const CodecSetup& setup) {
  return setup.variant->coder == Coder::kAacHeV2 ? 1 : setup.channels;
}

// The lowest eight bits.
unsigned char Byte(size_t bits) { return static_cast<unsigned char>(bits & 0xff); }

// Returns the bytes of the packet whose 2-byte header starts at `data`; 0 when none starts there.
size_t TwoBytePacketBytes(const unsigned char* data) {
  return Size(ParseTwoByteHeader(static_cast<unsigned short>(data[0] | data[1] << 8)));
}

// Returns whether a header starts here: sync word, layer 0, no checksum, and either MPEG version,
// for that bit says nothing about what LC holds.
bool IsAdtsSync(const unsigned char* data) { return data[0] == 0xff && (data[1] & 0xf7) == 0xf1; }

size_t AdtsPacketBytes(const unsigned char* data) {
  return Size((data[3] & 3) << 11 | data[4] << 3 | data[5] >> 5);
}

PacketSpan WholePacket(size_t packetBytes, size_t headerBytes) {
  return {PacketSpan::kWhole, packetBytes, headerBytes, packetBytes - headerBytes};
}

}  // namespace

PacketHeader::PacketHeader(const CodecSetup& setup)
    : m_framing(setup.variant->framing),
      m_rawId(setup.variant->rawId),
      m_rateIndex(RateIndex(CoreRate(setup))),
      m_channels(CoreChannels(setup)) {}

size_t PacketHeader::bytes() const {
  if (m_framing == Framing::kBare) return 0;
  return m_framing == Framing::kAdts ? kAdtsHeaderBytes : kTwoByteHeaderBytes;
}

void PacketHeader::Write(unsigned char* header, size_t payloadBytes) const {
  if (m_framing == Framing::kBare) return;
  if (m_framing == Framing::kTwoByteHeader) {
    const size_t word = 0xfc00 | (payloadBytes + 1);
    header[0] = Byte(word);
    header[1] = Byte(word >> 8);
    header[2] = Byte(Size(m_rawId));
    return;
  }
  const size_t length = payloadBytes + kAdtsHeaderBytes;
  const size_t rateIndex = Size(m_rateIndex);
  const size_t channels = Size(m_channels);
  constexpr size_t kLcProfile = 1;
  header[0] = 0xff;
  header[1] = 0xf1;
  header[2] = Byte(kLcProfile << 6 | rateIndex << 2 | channels >> 2);
  header[3] = Byte((channels & 3) << 6 | length >> 11);
  header[4] = Byte(length >> 3);
  header[5] = Byte((length & 7) << 5 | 0x1f);
  // These bits and the five before them are all set: how full the buffer is, is not told.
  header[6] = 0xfc;
}

PacketSpan PacketHeader::Read(const unsigned char* data, size_t size) const {
  switch (m_framing) {
    case Framing::kBare:
      return size > 0 && size <= kMaxPayloadBytes ? WholePacket(size, 0) : PacketSpan();
    case Framing::kAdts:
      return ReadAdts(data, size);
    default:
      return ReadTwoByte(data, size);
  }
}

PacketSpan PacketHeader::ReadTwoByte(const unsigned char* data, size_t size) const {
  if (size < kTwoByteHeaderBytes) return {PacketSpan::kIncomplete};
  const size_t bytes = TwoBytePacketBytes(data);
  if (bytes <= kTwoByteHeaderBytes || !Takes(data[2])) return {};
  if (bytes > size) return {PacketSpan::kIncomplete};
  return WholePacket(bytes, kTwoByteHeaderBytes);
}

PacketSpan PacketHeader::ReadAdts(const unsigned char* data, size_t size) const {
  if (size < kAdtsHeaderBytes) return {PacketSpan::kIncomplete};
  const int rateIndex = data[2] >> 2 & 15;
  const int channels = (data[2] & 1) << 2 | data[3] >> 6;
  if (rateIndex != m_rateIndex || channels != m_channels) return {};
  const PacketSpan span = ReadAnyAdts(data, size);
  const bool tooLong = IsAdtsSync(data) && AdtsPacketBytes(data) > kMaxPacketBytes;
  return tooLong ? PacketSpan() : span;
}

// The wide-band and the full-band id of Opus code the same packets.
bool PacketHeader::Takes(int rawId) const {
  if (m_rawId == 50 || m_rawId == 51) return rawId == 50 || rawId == 51;
  return rawId == m_rawId;
}

int RawIdAt(const unsigned char* data, size_t size) {
  if (size < kTwoByteHeaderBytes) return -1;
  return TwoBytePacketBytes(data) > kTwoByteHeaderBytes ? data[2] : -1;
}

PacketSpan ReadAnyAdts(const unsigned char* data, size_t size) {
  if (size < kAdtsHeaderBytes) return {PacketSpan::kIncomplete};
  const size_t bytes = AdtsPacketBytes(data);
  const bool oneBlock = (data[6] & 3) == 0;
  if (!IsAdtsSync(data) || !oneBlock || bytes <= kAdtsHeaderBytes) return {};
  if (bytes > size) return {PacketSpan::kIncomplete};
  return WholePacket(bytes, kAdtsHeaderBytes);
}

}  // namespace desktop
