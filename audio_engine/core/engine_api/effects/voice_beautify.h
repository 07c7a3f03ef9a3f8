#pragma once

#include "dsp.h"

// What is done for the voice. In brackets: pitch in semitones at full strength.
enum VoiceBeautifyOption {
  mode1 = 0,  // [0] Warm: more chest, softer sibilants.
  mode2 = 1,  // [0] Clear: rumble cut, presence and air lifted.
  mode3 = 2,  // [-2] Deep.
  mode4 = 3,  // [+2] Sweet: lighter and brighter.
  mode5 = 4,  // [0] Full: two more voices right after the first.
  mode6 = 5   // [0] Hall.
};

// Makes a singer's or a speaker's voice more pleasant. As every IDSP it is disabled at first: then
// samples pass unchanged. 8 to 192 kHz, one or two channels; other formats pass unchanged. Belongs
// to one thread at a time.
class ENGINE_API IAudioVoiceBeautify : public IDSP {
 public:
  // Changes `count` interleaved samples (of all channels together) in place and returns how many
  // there are now: always as many. The samples are signed, though the pointer is not. rate: Hz. The
  // output lags by at most 130 ms where the pitch is moved, else not at all.
  virtual int VoiceBeautifyProcess(unsigned short* samples, int count, int rate, int channels) = 0;

  // strength: 0 (the voice as it is) to 1, scales all that the mode does, its pitch included.
  // semitones: moves the pitch further, in every mode; the sum is kept within -7..+12. Values
  // beyond are clamped, and one that is no number counts as 0. Takes effect within 160 ms, faded
  // over.
  virtual void SetVoiceBeautifyOption(VoiceBeautifyOption option, float strength,
                                      float semitones) = 0;

  // A new object at mode1 with strength 0, released by Destroy(). Null only when there is no
  // memory.
  static IAudioVoiceBeautify* Create();
};
