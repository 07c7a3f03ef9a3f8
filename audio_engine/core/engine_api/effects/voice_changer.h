#pragma once

#include "../common/visibility.h"

// What the voice is turned into. In brackets: pitch in semitones, and what is done to it. The
// formants stay where the pitch moves, so that words and speaker are still understood.
enum VoiceEffectOption {
  VeoNone = 0,             // [0] The very same samples.
  VeoEthereal = 1,         // [0] Thin and far, in a large room.
  VeoThriller = 2,         // [-2] Dark, trembling, with an echo.
  VeoLuBan = 3,            // [+4] A boy's voice from a small box.
  VeoLorie = 4,            // [+9] A little girl's voice, steady (no vibrato).
  VeoUncle = 5,            // [-3] An older man: more chest.
  VeoDieFat = 6,           // [-5] Heavy and muffled.
  VeoBadBoy = 7,           // [+6] Cheeky: bright and a little nasal.
  VeoWarCraft = 8,         // [-7] An orc: rough, with weight.
  VeoHeavyMetal = 9,       // [0] Overdriven.
  VeoCold = 10,            // [-1] A blocked nose.
  VeoHeavyMechinery = 11,  // [-4] A machine: hum and metal resonances.
  VeoTrappedBeast = 12,    // [-6] Growling, in a cave.
  VeoPowerCurrent = 13     // [0] Chopped by mains current, thin.
};

// Changes a speaker's voice. Belongs to one thread at a time; the slot order is fixed.
class ENGINE_API IVoiceChangerToolbox {
 public:
  virtual ~IVoiceChangerToolbox() = default;

  // Changes `*count` interleaved samples (of all channels together) in place and returns how many
  // there are now: always as many, and `*count` stays as it is. The output lags by at most 130 ms,
  // with silence at first. Its level stays within 6 dB of the input's, and its peaks are kept below
  // full scale.
  virtual int Process(short* samples, short* count) = 0;

  // Takes effect within 160 ms, faded over. An unknown option counts as VeoNone.
  virtual void SetVoiceEffectOption(VoiceEffectOption option) = 0;

  // A new toolbox at VeoNone, freed by delete. 8 to 192 kHz, one or two channels; samples of
  // another format pass unchanged, with one line in the log. Null only when there is no memory.
  static IVoiceChangerToolbox* Create(int rate, int channels);
};
