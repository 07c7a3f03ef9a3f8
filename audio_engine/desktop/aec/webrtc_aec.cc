#include "engine_api/aec/webrtc_aec.h"

#include <algorithm>
#include <new>
#include <optional>

#include "desktop/aec/parts/echo_canceller.h"
#include "desktop/platform/log.h"

namespace {

constexpr int kRate = 16000;
constexpr int kBlock = kRate / 100;

// A handle; empty until WebRtcAec_Init.
using Handle = std::optional<desktop::EchoCanceller>;

// The canceller of a handle that is initialised, else null.
desktop::EchoCanceller* Canceller(void* handle) {
  auto* const canceller = static_cast<Handle*>(handle);
  return canceller != nullptr && canceller->has_value() ? &**canceller : nullptr;
}

}  // namespace

int32_t WebRtcAec_Create(void** handle) {
  if (handle == nullptr) return -1;
  *handle = new (std::nothrow) Handle;
  return *handle != nullptr ? 0 : -1;
}

int32_t WebRtcAec_Free(void* handle) {
  if (handle == nullptr) return -1;
  delete static_cast<Handle*>(handle);
  return 0;
}

int32_t WebRtcAec_Init(void* handle, int32_t rate, int32_t cardRate) {
  if (handle == nullptr) return -1;
  if (rate != kRate || cardRate != kRate) {
    desktop::LogRefusal("the echo canceller takes 16000 Hz, not %d and %d", rate, cardRate);
    return -1;
  }
  try {
    static_cast<Handle*>(handle)->emplace(kRate, desktop::EchoCanceller::Delay::kGiven,
                                          desktop::EchoCanceller::Suppressor::kOwn);
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("no memory for an echo canceller");
    return -1;
  }
  return 0;
}

int32_t WebRtcAec_set_config(void* handle, AecConfig config) {
  desktop::EchoCanceller* const canceller = Canceller(handle);
  if (canceller == nullptr) return -1;
  if (config.nlpMode < kAecNlpConservative || config.nlpMode > kAecNlpAggressive) {
    desktop::LogRefusal("the echo canceller has no suppression %d", config.nlpMode);
    return -1;
  }
  canceller->SetSuppression(static_cast<desktop::EchoCanceller::Suppression>(config.nlpMode));
  return 0;
}

int32_t WebRtcAec_BufferFarend(void* handle, const float* farend, int16_t samples) {
  desktop::EchoCanceller* const canceller = Canceller(handle);
  if (canceller == nullptr || farend == nullptr || samples != kBlock) return -1;
  canceller->ProcessFar(farend);
  return 0;
}

int32_t WebRtcAec_Process(void* handle, const float* const* nearend, int32_t bands,
                          float* const* out, int16_t samples, int16_t delayMs, int32_t) {
  desktop::EchoCanceller* const canceller = Canceller(handle);
  if (canceller == nullptr || nearend == nullptr || out == nullptr || bands != 1 ||
      samples != kBlock) {
    return -1;
  }
  canceller->SetDelay(delayMs);
  if (out[0] != nearend[0]) std::copy(nearend[0], nearend[0] + kBlock, out[0]);
  canceller->ProcessNear(out[0]);
  return 0;
}
