#pragma once

// What a detector says of one frame. Active, with or without voice, means that there is sound.
enum VADResultKind {
  vadResultIsActive = 0,             // Speech.
  vadResultIsPassive = 1,            // Silence or the background.
  vadResultIsUnknown = 2,            // Nothing was detected, or not enough was heard yet.
  vadResultIsActiveWithoutVoice = 3  // Another sound above the background.
};

// How readily a frame is taken for voice.
enum VoiceDetectionMode {
  voiceDetectionUnknown = -1,           // Not chosen: as voiceDetectionLowLikelihood.
  voiceDetectionVeryLowLikelihood = 0,  // The strictest.
  voiceDetectionLowLikelihood = 1,
  voiceDetectionModerateLikelihood = 2,
  voiceDetectionHighLikelihood = 3  // Takes the most for speech.
};
