#pragma once

#include <vector>

#include "guards/guards.h"

// Signals for guards, and what the guards find in them.

// A signal with samples of its own.
struct Sound {
  std::vector<float> samples = {};
  int rate = 48000;
  int channels = 1;
  int bits = 0;

  host::Signal AsSignal() const { return {samples, rate, channels, bits}; }
};

// Silence, as long as it takes.
Sound Silence(double seconds, int channels = 1, int rate = 48000);

// A sine of `amplitude` at `frequency` Hz.
Sound Sine(double frequency, double amplitude, double seconds, int channels = 1, int rate = 48000);

// What is found in `output`, made from `input`.
std::vector<host::GuardHit> Check(const Sound& input, const Sound& output,
                                  const host::GuardRules& rules = {});

// What is found in `output` when nothing is known of its input.
std::vector<host::GuardHit> CheckAlone(const Sound& output, const host::GuardRules& rules = {});

// The hit of one guard, or null.
const host::GuardHit* Find(const std::vector<host::GuardHit>& hits, host::Guard guard);

// The names of all that are hit, those that fail in capitals: "DROPOUT click".
std::string Names(const std::vector<host::GuardHit>& hits);
