#pragma once

// Where captured audio comes from.
enum AudioSourceType {
  AudioSourceTypeMic = 0,       // The microphone alone.
  AudioSourceTypeOuterPCM = 1,  // The samples from outside alone.
  AudioSourceTypeMix = 2        // Both, mixed.
};
