#include "desktop/codec/parts/stream_reader.h"

#include <algorithm>
#include <cstring>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"

namespace desktop {

static_assert(kMaxPacketBytes <= kMaxBlockSamples * sizeof(short), "a packet fits the buffer");

std::unique_ptr<StreamReader> StreamReader::Create(const CodecSetup& setup, LogOnce* log) {
  std::unique_ptr<PacketDecoder> decoder;
  if (setup.variant != nullptr) {
    decoder = PacketDecoder::Create(setup, log);
    if (decoder == nullptr) return nullptr;
  }
  const size_t channels = Size(setup.channels);
  if (channels < 1 || channels > kMaxBlockSamples) return nullptr;
  return std::unique_ptr<StreamReader>(new StreamReader(std::move(decoder), channels));
}

StreamReader::StreamReader(std::unique_ptr<PacketDecoder> decoder, size_t channels)
    : m_decoder(std::move(decoder)), m_channels(channels) {}

void StreamReader::Feed(const void* data, size_t size) {
  m_fed = static_cast<const unsigned char*>(data);
  m_fedBytes = size;
}

size_t StreamReader::Next(const short** block) {
  *block = m_block;
  return m_decoder == nullptr ? NextSamples() : NextPacket();
}

void StreamReader::Refill() {
  const size_t bytes = std::min(sizeof(m_bytes) - m_held, m_fedBytes);
  if (bytes == 0) return;
  memcpy(m_bytes + m_held, m_fed, bytes);
  m_held += bytes;
  m_fed += bytes;
  m_fedBytes -= bytes;
}

void StreamReader::Drop(size_t bytes) {
  m_held -= bytes;
  memmove(m_bytes, m_bytes + bytes, m_held);
}

size_t StreamReader::NextSamples() {
  Refill();
  const size_t packetBytes = m_channels * sizeof(short);
  const size_t bytes = m_held / packetBytes * packetBytes;
  memcpy(m_block, m_bytes, bytes);
  Drop(bytes);
  return bytes / sizeof(short);
}

size_t StreamReader::NextPacket() {
  for (;;) {
    Refill();
    size_t at = 0;
    PacketSpan span;
    while (at < m_held) {
      span = m_decoder->Find(m_bytes + at, m_held - at);
      if (span.state != PacketSpan::kNoPacket) break;
      m_decoder->Refuse();
      ++at;
    }
    if (at < m_held && span.state == PacketSpan::kWhole) {
      const bool decoded = m_decoder->Decode(m_bytes + at, span, m_block);
      Drop(at + span.packetBytes);
      if (decoded) return m_decoder->blockSamples();
      continue;
    }
    // Either none of it was a packet, or the rest is the start of one.
    Drop(at);
    if (m_fedBytes == 0) return 0;
  }
}

}  // namespace desktop
