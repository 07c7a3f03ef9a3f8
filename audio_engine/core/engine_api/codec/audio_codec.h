#pragma once

#include "../common/visibility.h"
#include "stream_format.h"

// The direction of a codec object.
enum AudioLibraryCodecMode { kAudioLibraryDecoder = 0, kAudioLibraryEncoder = 1 };

// An encoder or a decoder of one codec family. The caller deletes it; it belongs to one thread at a
// time. Nothing is flushed at the end: the last CodecDelay() samples stay inside.
class ENGINE_API CAudioCodec {
 public:
  virtual ~CAudioCodec() = default;

  // Makes the codec ready for `format`: which variant and bit rate by iRawCodecId, rate and
  // channels by their fields; iBitRate is never read. False when the family does not code that
  // format.
  virtual bool Init(AudioStreamFormat* format) = 0;

  // Sets *bytes to the room that `out` of Process needs for `inLen` bytes of samples, or for a
  // packet of `inLen` bytes; 0 before Init.
  virtual void CalcBufSize(int* bytes, int inLen) = 0;

  // Encoder: 16-bit interleaved samples in, whole packets with their header out; input that does
  // not fill a frame waits for the next call. Decoder: whole packets in, samples out. `*outLen` is
  // the room of `out` in bytes before, the bytes produced after: 0 when there are none yet, for a
  // damaged packet or one of another raw id, when the room is too small, and before Init.
  virtual void Process(const unsigned char* in, int inLen, unsigned char* out, int* outLen) = 0;

  // Ancillary data of the last packet: up to `count` pointers and sizes in bytes. Returns how many.
  virtual int GetAncData(char** data, int* sizes, int count) = 0;

  virtual AudioLibraryCodecMode CodecMode() = 0;
  virtual ZUAudioCodec CodecID() = 0;         // The family.
  virtual int CodecLevel() = 0;               // iQuality of the raw id's format; 0 before Init.
  virtual void DeInit() = 0;                  // As before Init.
  virtual const char* CodecDescribe() = 0;    // A short name, valid as long as the object.
  virtual bool IsAvailable() = 0;             // Init has succeeded.
  virtual int CodecDelay() = 0;               // Encoder and decoder together: samples per channel.
  virtual int GetEncoderSize() { return 0; }  // Bytes of one frame of samples, 0 when not known.
  virtual int GetDecodedSampleRate() = 0;     // Hz; 0 before Init.
  virtual int GetDecodedChannel() = 0;        // 0 before Init.
};

// A codec of `family`, owned by the caller, or null when the family is not available. Any thread.
ENGINE_API CAudioCodec* CreateAudioCodec(ZUAudioCodec family, AudioLibraryCodecMode mode);
