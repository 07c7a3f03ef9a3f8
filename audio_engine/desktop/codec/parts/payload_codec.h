#pragma once

#include <cstddef>

namespace desktop {

struct CodecVariant;

// The longest payload that a decoder takes: a 2-byte header has 10 bits for its length and that of
// the raw id.
constexpr size_t kMaxPayloadBytes = 1022;

// The longest payload that an encoder gives: with its 2-byte header and the raw id it fits the 1024
// bytes that callers have room for.
constexpr size_t kMaxEncodedPayloadBytes = 1021;

// The longest block that a packet of any codec stands for, all channels.
constexpr size_t kMaxBlockSamples = 2048 * 2;

// What one codec object codes.
struct CodecSetup {
  const CodecVariant* variant;
  int rate;  // Hz.
  int channels;
};

// Codes blocks of interleaved samples into payloads, one to one. Allocates nothing per block.
class PayloadEncoder {
 public:
  virtual ~PayloadEncoder() = default;

  // The length of every block.
  virtual size_t blockFrames() const = 0;

  // Codes one block into `payload`, which has room for kMaxEncodedPayloadBytes. Returns the bytes
  // written; 0 when it failed or the payload would be longer.
  virtual size_t Encode(const short* block, unsigned char* payload) = 0;

  // In bit/s. False when the codec refuses it.
  virtual bool SetBitRate(int bitRate) = 0;

  // From 0, the fastest, to 10.
  virtual bool SetComplexity(int complexity) = 0;
};

// Decodes payloads into blocks of interleaved samples, one to one. Allocates nothing per block.
class PayloadDecoder {
 public:
  virtual ~PayloadDecoder() = default;

  // The length of every block.
  virtual size_t blockFrames() const = 0;

  // Decodes one payload into `block`, always a whole one. False when the payload is damaged.
  virtual bool Decode(const unsigned char* payload, size_t bytes, short* block) = 0;

  // Makes up a block in place of one that was lost. False when there is nothing to make it from.
  virtual bool Conceal(short* block) = 0;
};

}  // namespace desktop
