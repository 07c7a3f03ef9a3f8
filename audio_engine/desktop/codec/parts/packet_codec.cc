#include "desktop/codec/parts/packet_codec.h"

#include <algorithm>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/create_payload_codec.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

namespace desktop {

void LogOnce::operator()(const char* what, int rawId) {
  if (IsFirst()) LogRefusal("codec, raw id %d: %s", rawId, what);
}

std::unique_ptr<PacketEncoder> PacketEncoder::Create(const CodecSetup& setup, LogOnce* log) {
  if (!PacketHeader(setup).IsValid()) return nullptr;
  std::unique_ptr<PayloadEncoder> encoder = CreatePayloadEncoder(setup);
  if (encoder == nullptr) return nullptr;
  return std::unique_ptr<PacketEncoder>(new PacketEncoder(setup, std::move(encoder), log));
}

PacketEncoder::PacketEncoder(const CodecSetup& setup, std::unique_ptr<PayloadEncoder> encoder,
                             LogOnce* log)
    : m_header(setup),
      m_rawId(setup.variant->rawId),
      m_encoder(std::move(encoder)),
      m_samples(m_encoder->blockFrames() * Size(setup.channels)),
      m_log(log != nullptr ? *log : m_ownLog) {}

size_t PacketEncoder::Encode(const short* block, unsigned char* packet) {
  const size_t payloadBytes = m_encoder->Encode(block, packet + m_header.bytes());
  if (payloadBytes == 0) {
    m_log("a block could not be coded within its limit, and is left out", m_rawId);
    return 0;
  }
  m_header.Write(packet, payloadBytes);
  return m_header.bytes() + payloadBytes;
}

std::unique_ptr<PacketDecoder> PacketDecoder::Create(const CodecSetup& setup, LogOnce* log) {
  if (!PacketHeader(setup).IsValid()) return nullptr;
  std::unique_ptr<PayloadDecoder> decoder = CreatePayloadDecoder(setup);
  if (decoder == nullptr) return nullptr;
  return std::unique_ptr<PacketDecoder>(new PacketDecoder(setup, std::move(decoder), log));
}

PacketDecoder::PacketDecoder(const CodecSetup& setup, std::unique_ptr<PayloadDecoder> decoder,
                             LogOnce* log)
    : m_header(setup),
      m_rawId(setup.variant->rawId),
      m_decoder(std::move(decoder)),
      m_samples(m_decoder->blockFrames() * Size(setup.channels)),
      m_log(log != nullptr ? *log : m_ownLog) {}

bool PacketDecoder::Decode(const unsigned char* data, const PacketSpan& span, short* block) {
  if (m_decoder->Decode(data + span.payloadOffset, span.payloadBytes, block)) return true;
  m_log("a damaged packet", m_rawId);
  return false;
}

void PacketDecoder::Conceal(short* block) {
  if (!m_decoder->Conceal(block)) std::fill_n(block, m_samples, short{0});
}

}  // namespace desktop
