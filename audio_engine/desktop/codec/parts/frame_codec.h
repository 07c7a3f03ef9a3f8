#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "desktop/codec/parts/frame_header.h"
#include "desktop/codec/parts/packet_codec.h"

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

// Codes frames of interleaved samples into packets with their header. Allocates nothing per frame.
class FrameEncoder {
 public:
  // Null when this build does not code that. log: of the object that this is a part of and that
  // outlives it; null for one of its own.
  static std::unique_ptr<FrameEncoder> Create(const CodecSetup& setup, LogOnce* log = nullptr);

  int samplesPerFrame() const { return m_samples; }  // All channels.

  // Codes one frame into `frame`, which has room for kMaxFrameBytes. Returns the bytes written; 0,
  // and once a line in the log, when there is no packet or it is too long for its header.
  int Encode(const short* samples, unsigned char* frame);

  bool SetBitRate(int bitRate) { return m_encoder->SetBitRate(bitRate); }
  bool SetComplexity(int complexity) { return m_encoder->SetComplexity(complexity); }

 private:
  FrameEncoder(const CodecSetup& setup, std::unique_ptr<PacketEncoder> encoder, LogOnce* log);

  const FrameHeader m_header;
  const int m_rawId;
  std::unique_ptr<PacketEncoder> m_encoder;
  const int m_samples;
  LogOnce m_ownLog;
  LogOnce& m_log;
};

// The reverse.
class FrameDecoder {
 public:
  static std::unique_ptr<FrameDecoder> Create(const CodecSetup& setup, LogOnce* log = nullptr);

  int samplesPerFrame() const { return m_samples; }  // All channels.

  // Looks at the frame that starts at `data`; FrameHeader::Read.
  FrameSpan Find(const unsigned char* data, int size) const { return m_header.Read(data, size); }

  // Decodes the whole frame `span` at `data` into `samples`. False, and once a line in the log,
  // when it is damaged.
  bool Decode(const unsigned char* data, const FrameSpan& span, short* samples);

  // Notes bytes that are no frame: once a line in the log.
  void Refuse() { m_log("no frame of this codec, or not a whole one", m_rawId); }

  // A made-up frame in place of a lost one: silence before the first frame.
  void Conceal(short* samples);

 private:
  FrameDecoder(const CodecSetup& setup, std::unique_ptr<PacketDecoder> decoder, LogOnce* log);

  const FrameHeader m_header;
  const int m_rawId;
  std::unique_ptr<PacketDecoder> m_decoder;
  const int m_samples;
  LogOnce m_ownLog;
  LogOnce& m_log;
};

}  // namespace desktop
