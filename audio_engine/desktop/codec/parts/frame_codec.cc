#include "desktop/codec/parts/frame_codec.h"

#include <algorithm>

#include "desktop/codec/parts/codec_table.h"
#include "engine_api/platform/log.h"

namespace desktop {

void LogOnce::operator()(const char* what, int rawId) {
  if (IsFirst()) OutputDebugInfo("codec, raw id %d: %s", rawId, what);
}

std::unique_ptr<FrameEncoder> FrameEncoder::Create(const CodecSetup& setup, LogOnce* log) {
  if (!FrameHeader(setup).IsValid()) return nullptr;
  std::unique_ptr<PacketEncoder> encoder = CreatePacketEncoder(setup);
  if (encoder == nullptr) return nullptr;
  return std::unique_ptr<FrameEncoder>(new FrameEncoder(setup, std::move(encoder), log));
}

FrameEncoder::FrameEncoder(const CodecSetup& setup, std::unique_ptr<PacketEncoder> encoder,
                           LogOnce* log)
    : m_header(setup),
      m_rawId(setup.variant->rawId),
      m_encoder(std::move(encoder)),
      m_samples(m_encoder->frameSamples() * setup.channels),
      m_log(log != nullptr ? *log : m_ownLog) {}

int FrameEncoder::Encode(const short* samples, unsigned char* frame) {
  const int packet = m_encoder->Encode(samples, frame + m_header.bytes());
  if (packet == 0) {
    m_log("a frame could not be coded within its limit, and is left out", m_rawId);
    return 0;
  }
  m_header.Write(frame, packet);
  return m_header.bytes() + packet;
}

std::unique_ptr<FrameDecoder> FrameDecoder::Create(const CodecSetup& setup, LogOnce* log) {
  if (!FrameHeader(setup).IsValid()) return nullptr;
  std::unique_ptr<PacketDecoder> decoder = CreatePacketDecoder(setup);
  if (decoder == nullptr) return nullptr;
  return std::unique_ptr<FrameDecoder>(new FrameDecoder(setup, std::move(decoder), log));
}

FrameDecoder::FrameDecoder(const CodecSetup& setup, std::unique_ptr<PacketDecoder> decoder,
                           LogOnce* log)
    : m_header(setup),
      m_rawId(setup.variant->rawId),
      m_decoder(std::move(decoder)),
      m_samples(m_decoder->frameSamples() * setup.channels),
      m_log(log != nullptr ? *log : m_ownLog) {}

bool FrameDecoder::Decode(const unsigned char* data, const FrameSpan& span, short* samples) {
  if (m_decoder->Decode(data + span.packetOffset, span.packetBytes, samples)) return true;
  m_log("a damaged packet", m_rawId);
  return false;
}

void FrameDecoder::Conceal(short* samples) {
  if (!m_decoder->Conceal(samples)) std::fill_n(samples, m_samples, short{0});
}

}  // namespace desktop
