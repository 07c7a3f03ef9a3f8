#include "desktop/codec/parts/stream_reader.h"

#include <algorithm>
#include <cstring>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {

static_assert(kMaxFrameBytes <= kMaxFrameSamples * sizeof(short), "a frame fits the buffer");

std::unique_ptr<StreamReader> StreamReader::Create(const CodecSetup& setup, LogOnce* log) {
  std::unique_ptr<FrameDecoder> decoder;
  if (setup.variant != nullptr) {
    decoder = FrameDecoder::Create(setup, log);
    if (decoder == nullptr) return nullptr;
  }
  if (setup.channels < 1 || setup.channels > kMaxFrameSamples) return nullptr;
  return std::unique_ptr<StreamReader>(new StreamReader(std::move(decoder), setup.channels));
}

StreamReader::StreamReader(std::unique_ptr<FrameDecoder> decoder, int channels)
    : m_decoder(std::move(decoder)), m_channels(channels) {}

void StreamReader::Feed(const void* data, size_t size) {
  m_fed = static_cast<const unsigned char*>(data);
  m_fedBytes = size;
}

int StreamReader::Next(const short** block) {
  *block = m_block;
  return m_decoder == nullptr ? NextSamples() : NextFrame();
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

int StreamReader::NextSamples() {
  Refill();
  const size_t frameBytes = static_cast<size_t>(m_channels) * sizeof(short);
  const size_t bytes = m_held / frameBytes * frameBytes;
  memcpy(m_block, m_bytes, bytes);
  Drop(bytes);
  return static_cast<int>(bytes / sizeof(short));
}

int StreamReader::NextFrame() {
  for (;;) {
    Refill();
    size_t at = 0;
    FrameSpan span;
    while (at < m_held) {
      span = m_decoder->Find(m_bytes + at, static_cast<int>(m_held - at));
      if (span.state != FrameSpan::kNoFrame) break;
      m_decoder->Refuse();
      ++at;
    }
    if (at < m_held && span.state == FrameSpan::kWhole) {
      const bool decoded = m_decoder->Decode(m_bytes + at, span, m_block);
      Drop(at + static_cast<size_t>(span.frameBytes));
      if (decoded) return m_decoder->samplesPerFrame();
      continue;
    }
    // All of it was no frame, or the rest is the start of one.
    Drop(at);
    if (m_fedBytes == 0) return 0;
  }
}

}  // namespace desktop
