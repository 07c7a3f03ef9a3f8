#pragma once

#include <cstddef>

#include "guards/samples.h"

namespace host {

// Audio as guards look at it. The samples belong to the caller.
struct Signal {
  Samples samples = {};  // Interleaved whole frames, full scale at 1.
  int rate = 0;          // Hz, above 0.
  int channels = 0;      // At least 1.
  int bits = 16;         // Of the integers that the samples were made from; 0: floats.

  size_t Frames() const { return samples.size() / static_cast<size_t>(channels); }
  double Seconds() const { return static_cast<double>(Frames()) / rate; }
};

}  // namespace host
