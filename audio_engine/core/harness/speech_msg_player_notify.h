#pragma once

#include "engine_api/mixing/speech_msg_player_notify.h"

// Listens to nothing that the player of a speech message says.
class SpeechMsgPlayerNotify : public ISpeechMsgPlayerNotify {
 public:
  void OnAudioPlayStatus(uint32_t, uint32_t, uint32_t) override {}
  void OnAudioPlayError() override {}
  void OnFirstStartPlayData() override {}
  void OnStopPlayData(uint32_t, uint32_t) override {}
  void OnReachMaxPlayTime(uint32_t, uint32_t) override {}
};
