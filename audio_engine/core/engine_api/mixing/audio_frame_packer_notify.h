#pragma once

#include <cstdint>

#include "../common/visibility.h"
#include "../enhancement/voice_activity.h"

// What a frame packer hands to its owner. The calls come on a thread of the engine, never on the
// device's; the slot order is fixed. From them EnablePackerVad of the channel works; all else of it
// is refused with one line in the log.
class ENGINE_API IAudioFramePackerNotify {
 public:
  virtual ~IAudioFramePackerNotify() = default;

  // One encoded frame of `len` bytes, the packer's own and valid for this call. voice: what the
  // detector says of it; timeStamp: of its start, ms; flag: 0.
  virtual void OnPackAudioFrame(const uint8_t* data, uint32_t len, VADResultKind voice,
                                uint32_t timeStamp, uint8_t flag) = 0;

  // The volume of the latest captured block.
  virtual void OnAudioCaptureVolume(uint32_t volume) = 0;
};
