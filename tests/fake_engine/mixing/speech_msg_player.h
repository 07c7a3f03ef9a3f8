#pragma once

#include <cstdint>

// What the fake message player answers.
struct SpeechMsgPlayerScript {
  bool init = true;
  uint32_t recordFileTime = 0;  // ms
};
