#pragma once

// Where captured audio comes from: the microphone, samples handed in from outside, or both mixed.
enum AudioSourceType {
  AudioSourceTypeMic = 0,
  AudioSourceTypeOuterPCM = 1,
  AudioSourceTypeMix = 2
};
