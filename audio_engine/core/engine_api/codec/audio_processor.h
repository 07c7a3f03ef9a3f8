#pragma once

#include <cstdint>

#include "../common/visibility.h"
#include "stream_format.h"

// Converts a stream from one format to another: samples to packets, packets to samples, or packets
// of one codec to those of another, with rate and channels converted on the way. Belongs to one
// thread at a time; released by Release alone.
class ENGINE_API AudioProcessor {
 protected:
  virtual ~AudioProcessor() = default;

 public:
  // `*inLen` bytes of any length in: parts of frames wait inside. `*outLen` is the room of `out` in
  // bytes before, the bytes produced after. Only whole packets and whole sample frames come out;
  // what finds no room waits for the next call, and is dropped when too much waits. `*inLen` stays:
  // all input counts as taken. The last two arguments are not used. On failure `*outLen` is 0.
  virtual void ProcessData(const void* in, uint32_t* inLen, void* out, uint32_t* outLen,
                           int reserved1, int reserved2) = 0;

  // Makes `processor`, never null: formats that it cannot convert give one whose ProcessData
  // produces nothing. PCM is iCodec kAudioCodecPCM, a packet format goes by its iRawCodecId. The
  // fields that a format leaves unset are never read, iBitRate among them.
  static void Create(const AudioStreamFormat& in, const AudioStreamFormat& out,
                     AudioProcessor*& processor);

  // Frees `processor` and clears it. Null is allowed.
  static void Release(AudioProcessor*& processor);
};
