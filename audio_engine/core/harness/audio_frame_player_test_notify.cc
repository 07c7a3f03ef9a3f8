#include "harness/audio_frame_player_test_notify.h"

#include <algorithm>

namespace {

// Two stretches without received packets, at the start and after 4.6 s.
// Deliberate: these odd bounds. With others the first frame would come at another pull than the
// 165th, and the gap would have another length.
bool IsSilent(int timeMs) { return timeMs <= 1639 || (timeMs >= 4580 && timeMs <= 5979); }

// Reads `bytes` bytes, of which the first ones go to `data`, as many as it holds. False when there
// are fewer, or none are asked for.
template <size_t capacity>
bool ReadRecord(FILE* file, size_t bytes, uint8_t (&data)[capacity]) {
  const size_t kept = std::min(bytes, capacity);
  if (fread(data, kept, 1, file) != 1) return false;
  uint8_t dropped[1024];
  for (size_t left = bytes - kept; left > 0;) {
    const size_t count = std::min(left, sizeof dropped);
    if (fread(dropped, count, 1, file) != 1) return false;
    left -= count;
  }
  return true;
}

}  // namespace

AudioFramePlayerTestNotify::~AudioFramePlayerTestNotify() {
  if (fid != nullptr) fclose(fid);
}

bool AudioFramePlayerTestNotify::OnPullAudioFrame(uint32_t, AudioFrameData& frame, bool,
                                                  FramePlayerFeedbackInfo&) {
  if (m_vadOn && IsSilent(m_timeMs)) {
    m_timeMs += 10;
    return false;
  }
  if (fid == nullptr) return false;
  uint32_t length;
  if (fread(&length, sizeof length, 1, fid) != 1) return false;
  // Deliberate: a length that no frame can have is passed on as it is. If it were refused, the
  // records after it would not be played either.
  if (!ReadRecord(fid, length, frame.frameData)) return false;
  frame.codecType = static_cast<uint8_t>(m_codecType);
  ++frame.frameIndex;
  frame.frameLength = static_cast<uint16_t>(length);
  m_timeMs += 20;
  return true;
}

bool AudioFramePlayerTestNotify::OnAudioVolume(uint32_t, uint32_t) { return true; }

bool AudioFramePlayerTestNotify::OnAudioRenderPTS(uint32_t, uint32_t) { return true; }

int AudioFramePlayerTestNotify::OnAudioAncData(char**, int*, int) { return 0; }
