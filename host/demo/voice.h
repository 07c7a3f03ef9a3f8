#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "demo/arithmetic.h"

namespace host {

// A stretch of time, seconds.
struct Stretch {
  double begin;
  double end;
};

struct Speech {
  std::vector<double> samples;  // Mono, peak 0.5; digital silence in the pauses.
  std::vector<Stretch> spoken;  // Where somebody talks, word by word.
};

// Somebody who talks: words of one to four syllables, of gliding vowels and hissing consonants,
// between pauses of 0.1 to 0.6 s. The first 0.3 s are silent.
Speech Speak(int rate, double seconds, uint64_t seed);

struct SungNote {
  Stretch at;
  int midi;  // 69 is 440 Hz.
};

struct Song {
  std::vector<double> samples;  // Mono, peak 0.5.
  std::vector<SungNote> notes;
};

// A melody of 100 beats a minute, sung on "a", with a little vibrato.
Song Sing(int rate, double seconds);

// A voice: the flow through the glottis (Klatt and Klatt, Analysis, synthesis, and perception of
// voice quality variations, 1990) into three resonators in a row (Klatt, Software for a
// cascade/parallel formant synthesizer, 1980).
class Voice {
 public:
  using Formants = std::array<double, 3>;  // Hz

  Voice(int rate, uint64_t seed);

  void Shape(const Formants& formants);  // Of what follows; a glide is many small steps.

  // One sample: a buzz of this pitch, and breath.
  double Next(double pitch, double buzz, double breath);

 private:
  struct Resonator {
    double gain = 1, first = 0, second = 0;  // y = gain x + first y1 + second y2
    double before = 0, earlier = 0;
  };

  const double m_rate;
  Noise m_noise;
  double m_phase = 0;  // Of the pitch, in turns.
  std::array<Resonator, 3> m_tract;
};

}  // namespace host
