#pragma once

#include <cstddef>
#include <memory>

#include "desktop/codec/parts/frame_codec.h"

namespace desktop {

// Turns the bytes of a stream, cut anywhere, into blocks of interleaved samples. What is no frame
// of its codec is passed over byte by byte. Allocates nothing after construction.
class StreamReader {
 public:
  // `setup.variant` null: the stream is 16-bit samples. Null when this build does not decode that.
  // log: of the object that this is a part of and that outlives it.
  static std::unique_ptr<StreamReader> Create(const CodecSetup& setup, LogOnce* log);

  // The next bytes, which must stay until Next has given 0.
  void Feed(const void* data, size_t size);

  // Points `block` to the next samples and returns their number, whole sample frames of all
  // channels and at most kMaxFrameSamples; 0 when more bytes are needed.
  int Next(const short** block);

 private:
  StreamReader(std::unique_ptr<FrameDecoder> decoder, int channels);
  void Refill();
  void Drop(size_t bytes);
  int NextSamples();
  int NextFrame();

  std::unique_ptr<FrameDecoder> m_decoder;  // Null for samples.
  const int m_channels;
  const unsigned char* m_fed = nullptr;
  size_t m_fedBytes = 0;
  unsigned char m_bytes[kMaxFrameSamples * sizeof(short)];  // Not yet made samples of.
  size_t m_held = 0;
  short m_block[kMaxFrameSamples];
};

}  // namespace desktop
