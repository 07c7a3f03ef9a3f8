#pragma once

#include <functional>
#include <string>

#include "engine_api/mixing/karaoke_file_mixer.h"

// How the fake file mixer behaves.
struct KaraokeFileMixerScript {
  bool open = true;
  // What a start does with the notify, which may be null; answers whether it succeeded. At first it
  // finishes at once.
  std::function<bool(IKaraokeFileMixerNotify* notify)> start = [](IKaraokeFileMixerNotify* notify) {
    if (notify != nullptr) notify->OnFinishMixer();
    return true;
  };
  // What a stop does with it; nothing at first.
  std::function<void(IKaraokeFileMixerNotify* notify)> stop = [](IKaraokeFileMixerNotify*) {};
};
