#pragma once

#include <cstdio>

#include "engine_api/mixing/audio_frame_packer_notify.h"

// Writes packed frames to a file: per frame its length in 4 bytes, little-endian, and its bytes.
class AudioFramePackerTestNotify : public IAudioFramePackerNotify {
 public:
  // file: the name of the file, which outlives the object. It is created by the first frame.
  explicit AudioFramePackerTestNotify(char* file) : m_file(file) {}
  ~AudioFramePackerTestNotify() override;  // Closes the file, if it is open.
  AudioFramePackerTestNotify(const AudioFramePackerTestNotify&) = delete;
  AudioFramePackerTestNotify& operator=(const AudioFramePackerTestNotify&) = delete;

  // Appends one frame; nothing is written while the file cannot be opened.
  void OnPackAudioFrame(const uint8_t* data, uint32_t len, VADResultKind voice, uint32_t timeStamp,
                        uint8_t flag) override;

  // Does nothing.
  void OnAudioCaptureVolume(uint32_t volume) override;

  FILE* fid = nullptr;
  char* m_file;
};
