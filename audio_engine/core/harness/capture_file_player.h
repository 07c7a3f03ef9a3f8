#pragma once

#include "engine_api/mixing/audio_capture_notify.h"

// Writes what a capture delivers to "capture.pcm", raw.
class CaptureFilePlayer : public IAudioCaptureNotify {
 public:
  // Appends one block and flushes. The file is opened by the first block of the process, whichever
  // object it comes to, and stays open; while it cannot be opened, every block tries again.
  void OnCaptureAudioData(const void* audioSamples, uint32_t dataSize, uint8_t volume,
                          VADResultKind voice, uint32_t timeStamp) override;

  // Does nothing and asks for more.
  bool OnCaptureVolumeVisual(const uint32_t& volume) override;
};
