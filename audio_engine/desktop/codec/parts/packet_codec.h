#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "desktop/codec/parts/packet_header.h"
#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

// A line in the engine's log, once for the object that it belongs to.
class LogOnce {
 public:
  void operator()(const char* what, int rawId);

  // True the first time: for a line in other words.
  bool IsFirst() { return !std::exchange(m_done, true); }

 private:
  bool m_done = false;
};

// Codes blocks of interleaved samples into packets. Allocates nothing per block.
class PacketEncoder {
 public:
  // Null when this build does not code that. log: of the object that this is a part of and that
  // outlives it; null for one of its own.
  static std::unique_ptr<PacketEncoder> Create(const CodecSetup& setup, LogOnce* log = nullptr);

  // The length of every block: in samples of all channels, and in frames.
  size_t blockSamples() const { return m_samples; }
  size_t blockFrames() const { return m_encoder->blockFrames(); }

  // Codes one block into `packet`, which has room for kMaxPacketBytes. Returns the bytes written;
  // 0, and once a line in the log, when there is no payload or it is too long for its header.
  size_t Encode(const short* block, unsigned char* packet);

  bool SetBitRate(int bitRate) { return m_encoder->SetBitRate(bitRate); }
  bool SetComplexity(int complexity) { return m_encoder->SetComplexity(complexity); }

 private:
  PacketEncoder(const CodecSetup& setup, std::unique_ptr<PayloadEncoder> encoder, LogOnce* log);

  const PacketHeader m_header;
  const int m_rawId;
  std::unique_ptr<PayloadEncoder> m_encoder;
  const size_t m_samples;
  LogOnce m_ownLog;
  LogOnce& m_log;
};

// Decodes packets into blocks of interleaved samples. Allocates nothing per block.
class PacketDecoder {
 public:
  // As PacketEncoder::Create.
  static std::unique_ptr<PacketDecoder> Create(const CodecSetup& setup, LogOnce* log = nullptr);

  // The length of every block: in samples of all channels, and in frames.
  size_t blockSamples() const { return m_samples; }
  size_t blockFrames() const { return m_decoder->blockFrames(); }

  // Looks at the packet that starts at `data`, as PacketHeader::Read does.
  PacketSpan Find(const unsigned char* data, size_t size) const {
    return m_header.Read(data, size);
  }

  // Decodes the whole packet `span` at `data` into `block`. False, and once a line in the log, when
  // it is damaged.
  bool Decode(const unsigned char* data, const PacketSpan& span, short* block);

  // Notes bytes that are no packet: once a line in the log.
  void Refuse() { m_log("no packet of this codec, or not a whole one", m_rawId); }

  // Makes up a block in place of a lost one: silence before the first packet.
  void Conceal(short* block);

 private:
  PacketDecoder(const CodecSetup& setup, std::unique_ptr<PayloadDecoder> decoder, LogOnce* log);

  const PacketHeader m_header;
  const int m_rawId;
  std::unique_ptr<PayloadDecoder> m_decoder;
  const size_t m_samples;
  LogOnce m_ownLog;
  LogOnce& m_log;
};

}  // namespace desktop
