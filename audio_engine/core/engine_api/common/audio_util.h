#pragma once

#include "visibility.h"

namespace zuwebrtc {

// Converts `count` 16-bit samples to floats in [-1, 1): each sample times 2^-15, exactly. Buffers
// do not overlap. Any thread.
ENGINE_API void S16ToFloat(const short* src, unsigned count, float* dst);

}  // namespace zuwebrtc

// Averages interleaved stereo (2 * frames floats, left first) into mono (frames floats): (left +
// right) / 2, in the scale of the input. Buffers do not overlap. Any thread.
ENGINE_API void MixStereoToMono(const float* interleaved, float* mono, int frames);
