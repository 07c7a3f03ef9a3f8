#pragma once

#include <functional>

#include "engine_api/effects/beat_track_notify.h"

// What the fake beat trackers do.
struct BeatTrackScript {
  // On each block; may tell beats. Answers the status. At first nothing is to be reported.
  std::function<int(IBeatTrackNotify* notify, const short* block, int samples)> detect =
      [](IBeatTrackNotify*, const short*, int) { return 0; };

  // When stopped; may tell what is still pending.
  std::function<void(IBeatTrackNotify* notify)> stop = [](IBeatTrackNotify*) {};
};
