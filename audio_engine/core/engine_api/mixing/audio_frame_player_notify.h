#pragma once

#include <cstdint>

#include "../common/visibility.h"

// One encoded frame on its way to a frame player.
struct AudioFrameData {
  uint8_t frameData[1024];
  uint16_t frameLength;  // Bytes. More than frameData holds: the frame is cut off and no good.
  uint32_t timestamp;
  uint32_t ssrc;
  uint32_t frameIndex;  // Counts the frames of the stream; where it jumps, the player conceals.
  uint8_t codecType;    // The low byte of the raw codec id.
  uint8_t keyFrame;
  uint8_t discard;  // Not 0: as good as lost.
};

// How a frame player is doing, for the owner that feeds it. The desktop's plays at the pace at
// which it pulls: it neither accelerates nor stretches.
struct FramePlayerFeedbackInfo {
  bool acceleratePlay;
  bool fasterPlayOn;
  bool stretchPlay;
  bool isFakeAudioFrame;  // The frame before was made up.
  double accelerateMS;
  double stretchMS;
  double playDelayMS;  // From now until the next frame is heard.
};

// What a frame player asks of its owner. The calls come on a thread of the engine, never on the
// device's; the slot order is fixed. From them EnablePackerVad of the channel works; all else of it
// is refused with one line in the log.
class ENGINE_API IAudioFramePlayerNotify {
 public:
  virtual ~IAudioFramePlayerNotify() = default;

  // Fills `frame` with the next encoded frame of the stream `streamId`. The fields that the owner
  // leaves keep what they held at the last pull. False: there is none now; it may come late, and is
  // waited for while other sound waits to be heard. One that never comes is told by a jump of the
  // next one's index. The player has filled in `feedback`.
  virtual bool OnPullAudioFrame(uint32_t streamId, AudioFrameData& frame, bool isFirst,
                                FramePlayerFeedbackInfo& feedback) = 0;

  // The volume of what is played. False: no more of these.
  virtual bool OnAudioVolume(uint32_t streamId, uint32_t volume) = 0;

  // The time stamp of what is played. False: no more of these.
  virtual bool OnAudioRenderPTS(uint32_t streamId, uint32_t timeStamp) = 0;

  // Data that came along with the audio: `count` blocks of bytes[i] bytes each.
  virtual int OnAudioAncData(char** data, int* bytes, int count) = 0;
};
