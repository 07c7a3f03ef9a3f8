#pragma once

#include <vector>

// The fault of an engine that writes damaged recordings.

namespace controls {

// Damages a whole recording of interleaved 16-bit samples. Each library of this kind has one
// definition of it.
void Damage(std::vector<short>& samples, int channels, int rate);

// The nearest sample to a value, within the limits of 16 bits.
short ToSample(double value);

// Replaces every frame of each channel by what lies at frame * step + offset of the recording, a
// place between two samples by band-limited interpolation; `cutOff` is its highest frequency, 1 for
// half the rate.
void Resample(std::vector<short>& samples, int channels, double step, double offset, double cutOff);

}  // namespace controls
