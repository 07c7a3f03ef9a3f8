#pragma once

#include <functional>

#include "engine_api/mixing/audio_channel.h"

// What the fake channel does with the notifies that it is given, and what it answers.
struct AudioChannelScript {
  bool packer = true;
  bool play = true;
  // While the packer runs and while the channel plays, once in each sleep.
  std::function<void(IAudioFramePackerNotify& notify)> pack = [](IAudioFramePackerNotify&) {};
  std::function<void(IAudioFramePlayerNotify& notify)> pull = [](IAudioFramePlayerNotify&) {};
};
