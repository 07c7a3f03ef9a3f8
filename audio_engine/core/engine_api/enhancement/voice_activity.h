#pragma once

// What a detector says of one frame. Active, with or without voice, means that there is sound.
enum VADResultKind {
  vadResultIsActive = 0,
  vadResultIsPassive = 1,
  vadResultIsUnknown = 2,
  vadResultIsActiveWithoutVoice = 3
};

// How readily a frame is taken for voice.
enum VoiceDetectionMode {
  voiceDetectionUnknown = -1,
  voiceDetectionVeryLowLikelihood = 0,
  voiceDetectionLowLikelihood = 1,
  voiceDetectionModerateLikelihood = 2,
  voiceDetectionHighLikelihood = 3
};
