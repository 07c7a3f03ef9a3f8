#pragma once

#include <cstdint>

#include "../common/visibility.h"

// Converts interleaved 16-bit audio to another rate and channel count, one block of fixed length at
// a time. To mono is the mean of all channels, mono to several is copies, else the first channels
// are kept and further ones are silent. Samples beyond full scale are limited. Belongs to one
// thread at a time; the slot order of the virtual operations is fixed.
//
// The desktop engine keeps 0.9 of the lower rate's half and is 85 dB down from 1.05 of it. A sound
// comes out 80 samples of the lower rate later than it went in, at equal rates at once.
class ENGINE_API IAudioResamplerEx {
 public:
  virtual ~IAudioResamplerEx() = default;

  // Converts one block of `source` into one block of `target`, which may be the same array.
  // sourceSamples and targetRoom count the samples of all channels; what they have beyond one block
  // is left alone. False, with nothing written, when they have less.
  virtual bool Convert(const short* source, uint32_t sourceSamples, short* target,
                       uint32_t targetRoom) = 0;

  // True when one of these differs from what the converter was made with.
  virtual bool IsFormatChange(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
                              uint32_t targetChannels) = 0;

  // The samples of one block, of all channels together.
  virtual uint32_t GetDestSamples() = 0;
  virtual uint32_t GetSrcSamples() = 0;

  // A new converter, released with Destroy. sourceFrames and targetFrames: samples per channel in
  // one block, whose ratio is the one that counts; rates in Hz. placeTag names the caller in the
  // log and may be null. A format that cannot be converted (a zero, more than 64 channels) is one
  // line there and makes a converter whose Convert is always false.
  static IAudioResamplerEx* Create(uint32_t sourceFrames, uint32_t sourceRate,
                                   uint32_t sourceChannels, uint32_t targetFrames,
                                   uint32_t targetRate, uint32_t targetChannels,
                                   const char* placeTag);

  // Deletes the converter, if there is one, and clears the caller's pointer.
  static void Destroy(IAudioResamplerEx*& converter);
};
