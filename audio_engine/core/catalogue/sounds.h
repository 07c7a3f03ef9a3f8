#pragma once

#include <span>
#include <string_view>

// What the audio outputs of the routines are made from, and what is asked of them.

namespace harness {

// A guard (see docs/guards.md) that says nothing of an output, or only warns, and why.
struct GuardOff {
  std::string_view guard;
  std::string_view reason;
  bool warns = false;
};

// Of an output whose name, as it is declared, ends with `output`. Of a list each file is held
// against the one at the same place of the list of inputs.
struct SoundUse {
  std::string_view output = {};  // Empty: of every one that no earlier line names.
  std::string_view input = {};   // The end of the name of the input; empty: of none.
  // False where the output does not follow its input in time or pitch.
  bool comparable = true;
  double lengthFactor = 1;        // The length of the output / that of the input.
  double lengthTolerance = 0.25;  // Seconds.
  double leastLevel = -12;        // dB against the input.
  double mostLevel = 12;
  std::span<const GuardOff> off = {};
  std::string_view noSound = {};  // Why it has no guards at all: it is no sound, but ...
  // The channel, from 0, in which a detector marks what it takes for speech: with samples above
  // half of full scale. -1: in none.
  int speechMarks = -1;
  // Measures (see docs/measures.md) that tell how well it is done, where what they need is there.
  std::span<const std::string_view> measures = {};
  std::string_view far = {};  // The end of the name of what the loudspeaker played.
  bool faithful = false;      // The output should be what the input is: its reference.
};

// The first of them that is for an output of this name, as it is declared; null for none.
const SoundUse* FindSound(std::span<const SoundUse> sounds, std::string_view output);

// Those of a routine, in the order in which they are looked up.
std::span<const SoundUse> Sounds(std::string_view routine);

}  // namespace harness
