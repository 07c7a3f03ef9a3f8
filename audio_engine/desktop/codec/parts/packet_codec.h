#pragma once

#include <memory>

namespace desktop {

struct CodecVariant;

// The longest packet that a decoder takes: a 2-byte header has 10 bits for its length and that of
// the raw id.
constexpr int kMaxPacketBytes = 1022;

// The longest packet that an encoder gives: with its 2-byte header and the raw id it fits the 1024
// bytes that callers have room for.
constexpr int kMaxEncodedBytes = 1021;

// The longest frame of any codec, all channels.
constexpr int kMaxFrameSamples = 2048 * 2;

// What one codec object codes.
struct CodecSetup {
  const CodecVariant* variant;
  int rate;  // Hz.
  int channels;
};

// Codes frames of interleaved samples into bare packets, one to one. Allocates nothing per frame.
class PacketEncoder {
 public:
  virtual ~PacketEncoder() = default;

  virtual int frameSamples() const = 0;  // Per channel.

  // Codes one frame into `packet`, which has room for kMaxEncodedBytes. Returns the packet's
  // bytes; 0 when it failed or the packet would be longer.
  virtual int Encode(const short* frame, unsigned char* packet) = 0;

  virtual bool SetBitRate(int bitRate) = 0;        // bit/s. False when the codec refuses it.
  virtual bool SetComplexity(int complexity) = 0;  // 0 to 10.
};

// The reverse.
class PacketDecoder {
 public:
  virtual ~PacketDecoder() = default;

  virtual int frameSamples() const = 0;  // Per channel.

  // Decodes one packet into `frame`, always a whole one. False when the packet is damaged.
  virtual bool Decode(const unsigned char* packet, int bytes, short* frame) = 0;

  // Makes up a frame in place of one that was lost. False when there is nothing to make it from.
  virtual bool Conceal(short* frame) = 0;
};

// Null when the library does not code that.
std::unique_ptr<PacketEncoder> CreatePacketEncoder(const CodecSetup& setup);
std::unique_ptr<PacketDecoder> CreatePacketDecoder(const CodecSetup& setup);

// By how many samples per channel a signal is late after an encoder and a decoder of one of the
// codec families. Measured. frameSamples: of one frame, per channel.
int PacketCodecLag(const CodecSetup& setup, int frameSamples);

}  // namespace desktop
