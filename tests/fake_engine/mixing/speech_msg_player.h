#pragma once

#include <cstdint>

#include "engine_api/mixing/speech_msg_player_notify.h"

// What the fake message player answers and was given.
struct SpeechMsgPlayerScript {
  bool init = true;
  uint32_t recordFileTime = 0;  // ms
  ISpeechMsgPlayerNotify* notify = nullptr;
};
