#pragma once

#include <cstdint>

#include "../common/visibility.h"

// What the player of a speech message tells its owner. The calls come on a thread of the engine;
// the slot order is fixed. Times in ms. From them Start, Stop and Destroy of that player are
// refused with one line in the log; the rest works.
class ENGINE_API ISpeechMsgPlayerNotify {
 public:
  virtual ~ISpeechMsgPlayerNotify() = default;

  // Every so often while it plays.
  virtual void OnAudioPlayStatus(uint32_t playedTime, uint32_t totalTime, uint32_t volume) = 0;

  // The message cannot be played on: what could be read of its file has been heard.
  virtual void OnAudioPlayError() = 0;

  // The first samples go to the device.
  virtual void OnFirstStartPlayData() = 0;

  // The message has ended or was stopped.
  virtual void OnStopPlayData(uint32_t playedTime, uint32_t totalTime) = 0;

  // The longest time that was asked for is over. The desktop's player is never asked for one, and
  // never calls this.
  virtual void OnReachMaxPlayTime(uint32_t playedTime, uint32_t totalTime) = 0;
};
