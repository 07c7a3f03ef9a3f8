#include "harness/capture_file_player.h"

#include <cstdio>

// Deliberate: one file for all objects, never closed. With one file each, a second capture would
// wipe what the first has written.
void CaptureFilePlayer::OnCaptureAudioData(const void* audioSamples, uint32_t dataSize, uint8_t,
                                           VADResultKind, uint32_t) {
  static FILE* fid = nullptr;
  if (fid == nullptr) fid = fopen("capture.pcm", "wb");
  if (fid == nullptr) return;
  fwrite(audioSamples, dataSize, 1, fid);
  fflush(fid);
}

bool CaptureFilePlayer::OnCaptureVolumeVisual(const uint32_t&) { return true; }
