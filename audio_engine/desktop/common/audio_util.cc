#include "engine_api/common/audio_util.h"

// Loops that the compiler turns into vector instructions by itself.

void zuwebrtc::S16ToFloat(const short* __restrict src, unsigned count, float* __restrict dst) {
  for (unsigned i = 0; i < count; ++i) dst[i] = static_cast<float>(src[i]) * 0x1p-15f;
}

void MixStereoToMono(const float* __restrict interleaved, float* __restrict mono, int frames) {
  for (int i = 0; i < frames; ++i) mono[i] = (interleaved[2 * i] + interleaved[2 * i + 1]) / 2;
}
