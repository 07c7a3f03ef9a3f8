#pragma once

#include <cstddef>
#include <memory>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// Turns the bytes of a stream, cut anywhere, into blocks of interleaved samples. What is no packet
// of its codec is passed over byte by byte. Allocates nothing after construction.
class StreamReader {
 public:
  // `setup.variant` null: the stream is 16-bit samples. Null when this build does not decode that.
  // log: of the object that this is a part of and that outlives it.
  static std::unique_ptr<StreamReader> Create(const CodecSetup& setup, LogOnce* log);

  // The next bytes, which must stay until Next has given 0.
  void Feed(const void* data, size_t size);

  // Points `block` to the next samples and returns their number, whole frames and at most
  // kMaxBlockSamples; 0 when more bytes are needed.
  size_t Next(const short** block);

 private:
  StreamReader(std::unique_ptr<PacketDecoder> decoder, size_t channels);
  void Refill();
  void Drop(size_t bytes);
  size_t NextSamples();
  size_t NextPacket();

  // Null for a stream of samples.
  std::unique_ptr<PacketDecoder> m_decoder;
  const size_t m_channels;

  // What is left of the bytes that were fed.
  const unsigned char* m_fed = nullptr;
  size_t m_fedBytes = 0;

  // The m_held bytes that samples are made of next.
  unsigned char m_bytes[kMaxBlockSamples * sizeof(short)];
  size_t m_held = 0;

  short m_block[kMaxBlockSamples];
};

}  // namespace desktop
