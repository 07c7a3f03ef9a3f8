#pragma once

#include "engine_api/effects/drc.h"

// The parts of which the libraries of these tests put a compressor together: one that halves.

#define HALVING_DRC_LIFE \
  struct Drc::Impl {};   \
  Drc::Drc() = default;  \
  Drc::~Drc() = default; \
  static_assert(true, "takes the semicolon")

inline void Halve(short* samples, int count) {
  for (int i = 0; i < count; ++i) samples[i] = static_cast<short>(samples[i] / 2);
}
