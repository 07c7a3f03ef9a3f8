#pragma once

#include <cstdio>

#include "engine_api/mixing/audio_frame_player_notify.h"

// Feeds a file of packed frames, as AudioFramePackerTestNotify writes it, to a frame player.
class AudioFramePlayerTestNotify : public IAudioFramePlayerNotify {
 public:
  // fid: the open file, closed by this object, or null. file: its name. codecType: what every frame
  // is said to be. vadOn: no frames come in two stretches of silence.
  AudioFramePlayerTestNotify(FILE* fid, char* file, int codecType, bool vadOn)
      : fid(fid), m_file(file), m_codecType(codecType), m_vadOn(vadOn) {}
  ~AudioFramePlayerTestNotify() override;
  AudioFramePlayerTestNotify(const AudioFramePlayerTestNotify&) = delete;
  AudioFramePlayerTestNotify& operator=(const AudioFramePlayerTestNotify&) = delete;

  // Fills frame with the next record: frameData, frameLength, codecType, and frameIndex one higher.
  // All else stays as it is. False when there is none. A record longer than frameData is read to
  // its end and announced in full, although only its first bytes are there.
  bool OnPullAudioFrame(uint32_t streamId, AudioFrameData& frame, bool isFirst,
                        FramePlayerFeedbackInfo& feedback) override;

  // These do nothing and answer true, true and 0.
  bool OnAudioVolume(uint32_t streamId, uint32_t volume) override;
  bool OnAudioRenderPTS(uint32_t streamId, uint32_t timeStamp) override;
  int OnAudioAncData(char** data, int* bytes, int count) override;

  FILE* fid;
  char* m_file;
  int m_codecType;
  int m_timeMs = 0;  // The simulated clock of the player, in ms.
  bool m_vadOn;
};
