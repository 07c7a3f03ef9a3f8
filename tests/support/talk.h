#pragma once

#include <vector>

// Signals like speech and its echo, made from a seed, the same in every run.

using Samples = std::vector<short>;

// Noise of voice-like colour in syllables with pauses between them. level: of the syllables, dB
// under full scale.
Samples Talk(int rate, double seconds, unsigned seed, double level = -20);

// White noise at `level` dB under full scale.
Samples Hiss(int rate, double seconds, unsigned seed, double level);

// What a room makes of `far`, `delayMs` later and `gainDb` louder: a response that fades within
// some 60 ms.
Samples Echo(const Samples& far, int rate, int delayMs, double gainDb = -6);

Samples Sum(const Samples& one, const Samples& other);  // As long as the shorter, limited.

// The level of samples from..to (seconds), dB of full scale.
double LevelDb(const Samples& samples, int rate, double from, double to);

// How much louder `in` is than `out` from..to, where `in` stands 15 dB above the quietest tenth of
// its 20 ms frames: of an echo and what a canceller left of it, the ERLE.
double LossDb(const Samples& in, const Samples& out, int rate, double from, double to);

// The signal to error ratio of `out` against `wanted` from a time on, with the best gain, and with
// a lag of `lag` samples.
double SdrDb(const Samples& wanted, const Samples& out, int rate, double from, int lag);

// By how many samples `out` is later than `in`, at most `most`, and how well both agree then: 1 for
// a copy of any level.
struct Lag {
  int samples;
  double agreement;
};
Lag FindLag(const Samples& in, const Samples& out, int most);
