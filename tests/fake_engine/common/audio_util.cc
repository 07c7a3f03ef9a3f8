#include "engine_api/common/audio_util.h"

#include "fake_engine/fake_engine.h"

// Halves: neither the sample's own range nor -1 to 1, so that a test sees whose scaling was used.
void zuwebrtc::S16ToFloat(const short* src, unsigned count, float* dst) {
  FakeEngine::Current().Record("S16ToFloat(%u)", count);
  for (unsigned i = 0; i < count; ++i) dst[i] = static_cast<float>(src[i]) / 2;
}

// Left less right, which no averaging gives.
void MixStereoToMono(const float* interleaved, float* mono, int frames) {
  FakeEngine::Current().Record("MixStereoToMono(%d)", frames);
  for (int i = 0; i < frames; ++i) mono[i] = interleaved[2 * i] - interleaved[2 * i + 1];
}
