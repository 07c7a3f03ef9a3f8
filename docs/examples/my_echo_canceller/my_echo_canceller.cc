// An echo canceller that takes the place of the desktop engine's: all that
// engine_api/aec/webrtc_aec.h declares. A filter of 128 ms learns the way from the loudspeaker to
// the microphone by normalised least mean squares (Haykin, Adaptive Filter Theory, chapter 6), and
// stands still while the near end talks louder than any echo could be (Duttweiler 1978).

#include <audio_engine/engine_api/aec/webrtc_aec.h>
#include <audio_engine/engine_api/common/interface_version.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <new>

AUDIO_ENGINE_INTERFACE_VERSION;

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 160;
constexpr size_t kTaps = 2048;
constexpr size_t kMostDelay = 8000;  // Samples.
constexpr size_t kHistory = kTaps + kMostDelay + kBlock;
constexpr float kStep = 0.5F;
constexpr float kFloor = 1e4F * kTaps;  // Energy below which the filter learns slowly.
constexpr float kNearTalk = 0.9F;       // Near end / loudest far end, from where it is no echo.

struct Canceller {
  std::array<float, kTaps> filter = {};
  std::array<float, kHistory> far = {};  // The latest sample is the last one.

  void BufferFar(const float* block) {
    std::copy(far.begin() + kBlock, far.end(), far.begin());
    std::copy_n(block, kBlock, far.end() - kBlock);
  }

  float Cancel(float near, const float* heard) {
    float echo = 0;
    float energy = kFloor;
    float loudest = 0;
    for (size_t i = 0; i < kTaps; ++i) {
      echo += filter[i] * heard[i];
      energy += heard[i] * heard[i];
      loudest = std::max(loudest, std::abs(heard[i]));
    }
    const float error = near - echo;
    if (std::abs(near) > kNearTalk * loudest) return error;
    const float change = kStep * error / energy;
    for (size_t i = 0; i < kTaps; ++i) filter[i] += change * heard[i];
    return error;
  }
};

Canceller* Of(void* handle) { return static_cast<Canceller*>(handle); }

}  // namespace

int32_t WebRtcAec_Create(void** handle) {
  if (handle == nullptr) return -1;
  *handle = new (std::nothrow) Canceller;
  return *handle == nullptr ? -1 : 0;
}

int32_t WebRtcAec_Free(void* handle) {
  delete Of(handle);
  return handle == nullptr ? -1 : 0;
}

int32_t WebRtcAec_Init(void* handle, int32_t rate, int32_t cardRate) {
  if (handle == nullptr || rate != kRate || cardRate != kRate) return -1;
  *Of(handle) = Canceller();
  return 0;
}

// There is no suppressor whose strength could be chosen.
int32_t WebRtcAec_set_config(void* handle, AecConfig config) {
  const bool known = config.nlpMode >= kAecNlpConservative && config.nlpMode <= kAecNlpAggressive;
  return handle == nullptr || !known ? -1 : 0;
}

int32_t WebRtcAec_BufferFarend(void* handle, const float* farend, int16_t samples) {
  if (handle == nullptr || farend == nullptr || samples != int16_t{kBlock}) return -1;
  Of(handle)->BufferFar(farend);
  return 0;
}

int32_t WebRtcAec_Process(void* handle, const float* const* nearend, int32_t bands,
                          float* const* out, int16_t samples, int16_t delayMs, int32_t /*skew*/) {
  if (handle == nullptr || nearend == nullptr || out == nullptr) return -1;
  if (bands != 1 || samples != int16_t{kBlock}) return -1;
  Canceller& canceller = *Of(handle);
  // The filter begins a little before the delay that is said, which is never exact.
  const size_t delay = static_cast<size_t>(std::clamp<int>(delayMs - 8, 0, 500)) * kRate / 1000;
  const float* const first = canceller.far.data() + kHistory - kBlock - kTaps + 1 - delay;
  for (size_t i = 0; i < kBlock; ++i) {
    out[0][i] = std::clamp(canceller.Cancel(nearend[0][i], first + i), -32768.0F, 32767.0F);
  }
  return 0;
}
