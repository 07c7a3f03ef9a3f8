#pragma once

#include "dsp.h"

// What is done for the voice. No mode moves its pitch, so that a singer stays in key.
enum VoiceBeautifyOption {
  mode1 = 0,  // Warm: more chest, softer sibilants.
  mode2 = 1,  // Clear: rumble cut, presence and air lifted.
  mode3 = 2,  // Deep: formants 2 semitones lower, as of a larger body.
  mode4 = 3,  // Sweet: formants 2 semitones higher, lighter and brighter.
  mode5 = 4,  // Full: two more voices right after the first.
  mode6 = 5   // Hall.
};

// Makes a singer's or a speaker's voice more pleasant. As every IDSP it is disabled at first: then
// samples pass unchanged. 8 to 192 kHz, one or two channels; other formats pass unchanged. Belongs
// to one thread at a time.
class ENGINE_API IAudioVoiceBeautify : public IDSP {
 public:
  // Changes `count` interleaved samples (of all channels together) in place and returns how many
  // there are now: always as many. The samples are signed, though the pointer is not. rate: Hz. The
  // output lags by at most 130 ms where pitch or formants are moved, else not at all. Its level
  // stays within 6 dB of the input's, and its peaks are kept below full scale.
  virtual int VoiceBeautifyProcess(unsigned short* samples, int count, int rate, int channels) = 0;

  // strength: 0 (the voice as it is) to 1, scales all that the mode does.
  // semitones: moves the pitch in every mode, -7 to +12; the formants stay, so that it is the same
  // singer. Values beyond are clamped, and one that is no number counts as 0. Takes effect within
  // 160 ms, faded over.
  virtual void SetVoiceBeautifyOption(VoiceBeautifyOption option, float strength,
                                      float semitones) = 0;

  // A new object at mode1 with strength 0, released by Destroy(). Null only when there is no
  // memory.
  static IAudioVoiceBeautify* Create();
};
