#pragma once

#include <cstdint>

#include "../common/visibility.h"
#include "../enhancement/voice_activity.h"

// What a capture hands to its owner. The calls come on a thread of the engine; the slot order is
// fixed. From them Open, Start, Stop, Close and Destroy of that capture, and StartAudioSaver,
// StopAudioSaver and Destroy of its engine, are refused with one line in the log; the rest works.
class ENGINE_API IAudioCaptureNotify {
 public:
  virtual ~IAudioCaptureNotify() = default;

  // One captured block: `dataSize` bytes of interleaved 16-bit samples, the capture's own and valid
  // for this call. volume: of the block; voice: what the detector says of it; timeStamp in ms.
  virtual void OnCaptureAudioData(const void* audioSamples, uint32_t dataSize, uint8_t volume,
                                  VADResultKind voice, uint32_t timeStamp) = 0;

  // The volume to show for the latest block. False: no more of these.
  virtual bool OnCaptureVolumeVisual(const uint32_t& volume) = 0;
};
