#include "harness/audio_frame_packer_test_notify.h"

AudioFramePackerTestNotify::~AudioFramePackerTestNotify() {
  if (fid != nullptr) fclose(fid);
}

void AudioFramePackerTestNotify::OnPackAudioFrame(const uint8_t* data, uint32_t len, VADResultKind,
                                                  uint32_t, uint8_t) {
  if (fid == nullptr) fid = fopen(m_file, "wb");
  if (fid == nullptr) return;
  fwrite(&len, sizeof len, 1, fid);
  fwrite(data, len, 1, fid);
}

void AudioFramePackerTestNotify::OnAudioCaptureVolume(uint32_t) {}
