#pragma once

#include <string>

#include "../common/visibility.h"

// Codecs for local files. Where a codec also has a network format, its value is the raw codec id.
namespace AudioLocalCodec {

enum AudioCodecType {
  UNKNOWN_CODEC = -1,    // None.
  SPEEX_CODEC_8 = 0,     // Speex, quality 8.
  AAC_PLUS_CODEC = 1,    // HE-AAC v2.
  SILK_CODEC = 2,        // Silk.
  AAC_ELD_CODEC = 4,     // AAC-ELD.
  SPEEX_CODEC_4 = 21,    // Speex, quality 4.
  SPEEX_CODEC_2 = 23,    // Speex, quality 2.
  AAC_LC_CODEC = 35,     // AAC LC, 128 kbit/s.
  AAC_AUDIT_CODEC = 36,  // AAC LC, 160 kbit/s.
  WAV_CODEC = 255        // Samples as they are.
};

// Codes one frame of 16-bit interleaved samples per call. Released by Destroy alone; belongs to one
// thread at a time.
class ENGINE_API IAudioEncoder {
 protected:
  virtual ~IAudioEncoder() = default;

 public:
  virtual void Destroy() = 0;         // Frees the object.
  virtual int GetEncoderBytes() = 0;  // Bytes of one frame of samples. The same before Init.
  virtual bool Init() = 0;            // Before the first frame. False when the codec cannot start.
  virtual void Uninit() = 0;          // As before Init.
  virtual void Flush() = 0;           // Forgets the frames so far, as after Init.

  // `out` becomes the packet of `len` bytes of samples, a short frame being filled up with silence;
  // empty when there is no packet, for a negative `len` or one above a frame, and before Init.
  virtual void Encode(const char* in, int len, std::string& out) = 0;
  virtual void EncodeLoss(std::string& out) = 0;  // Codes a concealment of a frame that was lost.

  virtual bool SetBitRate(int bitRate) = 0;        // bit/s. False when the codec refuses it.
  virtual bool SetComplexity(int complexity) = 0;  // 0 (fastest) to 10. False outside of it.
};

// The reverse: one packet per call. Released by Destroy alone; belongs to one thread at a time.
class ENGINE_API IAudioDecoder {
 protected:
  virtual ~IAudioDecoder() = default;

 public:
  virtual void Destroy() = 0;  // Frees the object.
  virtual bool Init() = 0;     // Before the first packet. False when the codec cannot start.
  virtual void Uninit() = 0;   // As before Init.
  virtual void Flush() = 0;    // Forgets the packets so far, as after Init.

  // `out` becomes the samples of the packet of `len` bytes; empty when it is damaged, for a
  // negative or too long `len`, and before Init.
  virtual void Decode(const char* in, int len, std::string& out) = 0;
  virtual void DecodeLoss(std::string& out) = 0;  // One concealed frame in place of a lost packet.
};

// A codec of `type`, owned by the caller until Destroy, or null when there is none. Any thread.
ENGINE_API IAudioEncoder* CreateAudioEncoder(AudioCodecType type);
ENGINE_API IAudioDecoder* CreateAudioDecoder(AudioCodecType type);

}  // namespace AudioLocalCodec
