#include "desktop/codec/parts/frame_header.h"

#include "engine_api/codec/two_byte_header.h"

namespace desktop {

namespace {

constexpr int kTwoByteHeaderBytes = 3;  // The word and the raw id, which its length includes.
constexpr int kAdtsHeaderBytes = 7;
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

unsigned short WordAt(const unsigned char* data) {
  return static_cast<unsigned short>(data[0] | data[1] << 8);
}

// Sync word, layer 0, no checksum. Either MPEG version: the bit says nothing about what LC holds.
bool IsAdtsSync(const unsigned char* data) { return data[0] == 0xff && (data[1] & 0xf7) == 0xf1; }

int AdtsFrameBytes(const unsigned char* data) {
  return (data[3] & 3) << 11 | data[4] << 3 | data[5] >> 5;
}

}  // namespace

FrameHeader::FrameHeader(const CodecSetup& setup)
    : m_framing(setup.variant->framing),
      m_rawId(setup.variant->rawId),
      m_rateIndex(RateIndex(CoreRate(setup))),
      m_channels(CoreChannels(setup)) {}

int FrameHeader::bytes() const {
  if (m_framing == Framing::kBare) return 0;
  return m_framing == Framing::kAdts ? kAdtsHeaderBytes : kTwoByteHeaderBytes;
}

void FrameHeader::Write(unsigned char* header, int packetBytes) const {
  if (m_framing == Framing::kBare) return;
  if (m_framing == Framing::kTwoByteHeader) {
    const int word = 0xfc00 | (packetBytes + 1);
    header[0] = static_cast<unsigned char>(word & 0xff);
    header[1] = static_cast<unsigned char>(word >> 8);
    header[2] = static_cast<unsigned char>(m_rawId);
    return;
  }
  const int frame = packetBytes + kAdtsHeaderBytes;
  constexpr int kLcProfile = 1;
  header[0] = 0xff;
  header[1] = 0xf1;
  header[2] = static_cast<unsigned char>(kLcProfile << 6 | m_rateIndex << 2 | m_channels >> 2);
  header[3] = static_cast<unsigned char>((m_channels & 3) << 6 | frame >> 11);
  header[4] = static_cast<unsigned char>(frame >> 3 & 0xff);
  header[5] = static_cast<unsigned char>((frame & 7) << 5 | 0x1f);
  header[6] = 0xfc;  // With the bits before: the buffer's fullness is not told.
}

FrameSpan FrameHeader::Read(const unsigned char* data, int size) const {
  switch (m_framing) {
    case Framing::kBare:
      return size > 0 && size <= kMaxPacketBytes ? FrameSpan{FrameSpan::kWhole, size, 0, size}
                                                 : FrameSpan();
    case Framing::kAdts:
      return ReadAdts(data, size);
    default:
      return ReadTwoByte(data, size);
  }
}

FrameSpan FrameHeader::ReadTwoByte(const unsigned char* data, int size) const {
  if (size < kTwoByteHeaderBytes) return {FrameSpan::kIncomplete};
  const int frame = ParseTwoByteHeader(WordAt(data));
  if (frame <= kTwoByteHeaderBytes || !Takes(data[2])) return {};
  if (frame > size) return {FrameSpan::kIncomplete};
  return {FrameSpan::kWhole, frame, kTwoByteHeaderBytes, frame - kTwoByteHeaderBytes};
}

FrameSpan FrameHeader::ReadAdts(const unsigned char* data, int size) const {
  if (size < kAdtsHeaderBytes) return {FrameSpan::kIncomplete};
  const int rateIndex = data[2] >> 2 & 15;
  const int channels = (data[2] & 1) << 2 | data[3] >> 6;
  if (rateIndex != m_rateIndex || channels != m_channels) return {};
  const FrameSpan span = ReadAnyAdts(data, size);
  const bool tooLong = IsAdtsSync(data) && AdtsFrameBytes(data) > kMaxFrameBytes;
  return tooLong ? FrameSpan() : span;
}

// The wide-band and the full-band id of Opus code the same packets.
bool FrameHeader::Takes(int rawId) const {
  if (m_rawId == 50 || m_rawId == 51) return rawId == 50 || rawId == 51;
  return rawId == m_rawId;
}

int RawIdAt(const unsigned char* data, int size) {
  if (size < kTwoByteHeaderBytes) return -1;
  return ParseTwoByteHeader(WordAt(data)) > kTwoByteHeaderBytes ? data[2] : -1;
}

FrameSpan ReadAnyAdts(const unsigned char* data, int size) {
  if (size < kAdtsHeaderBytes) return {FrameSpan::kIncomplete};
  const int frame = AdtsFrameBytes(data);
  const bool oneBlock = (data[6] & 3) == 0;
  if (!IsAdtsSync(data) || !oneBlock || frame <= kAdtsHeaderBytes) return {};
  if (frame > size) return {FrameSpan::kIncomplete};
  return {FrameSpan::kWhole, frame, kAdtsHeaderBytes, frame - kAdtsHeaderBytes};
}

}  // namespace desktop
