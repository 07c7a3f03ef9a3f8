// An echo canceller of half the depth: what the engine beneath takes away by 20 dB goes down by 10.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <mutex>
#include <utility>

#include "controls/beneath.h"
#include "engine_api/aec/webrtc_aec.h"
#include "engine_api/common/interface_version.h"

AUDIO_ENGINE_INTERFACE_VERSION;

namespace {

constexpr size_t kBlock = 160;

// Passes a call on to the engine beneath.
template <typename... Arguments>
int32_t Pass(const char* name, Arguments... arguments) {
  return controls::Beneath<int32_t(Arguments...)>(name)(arguments...);
}

double Energy(const float* samples) {
  double sum = 0;
  for (size_t i = 0; i < kBlock; ++i) sum += static_cast<double>(samples[i]) * samples[i];
  return sum;
}

// The near end's share in the last block of each canceller, which any thread may have.
std::mutex g_lock;
std::map<const void*, float> g_shares;

// Sets the share of this block and returns that of the one before.
float Exchange(const void* handle, float share) {
  const std::lock_guard guard(g_lock);
  const auto [place, isNew] = g_shares.emplace(handle, share);
  return isNew ? share : std::exchange(place->second, share);
}

void Forget(const void* handle) {
  const std::lock_guard guard(g_lock);
  g_shares.erase(handle);
}

}  // namespace

int32_t WebRtcAec_Create(void** handle) { return Pass("audio_engine_WebRtcAec_Create", handle); }

int32_t WebRtcAec_Free(void* handle) {
  Forget(handle);
  return Pass("audio_engine_WebRtcAec_Free", handle);
}

int32_t WebRtcAec_Init(void* handle, int32_t rate, int32_t cardRate) {
  return Pass("audio_engine_WebRtcAec_Init", handle, rate, cardRate);
}

int32_t WebRtcAec_set_config(void* handle, AecConfig config) {
  return Pass("audio_engine_WebRtcAec_set_config", handle, config);
}

int32_t WebRtcAec_BufferFarend(void* handle, const float* farend, int16_t samples) {
  return Pass("audio_engine_WebRtcAec_BufferFarend", handle, farend, samples);
}

int32_t WebRtcAec_Process(void* handle, const float* const* nearend, int32_t bands,
                          float* const* out, int16_t samples, int16_t delayMs, int32_t skew) {
  std::array<float, kBlock> near = {};
  const bool known = nearend != nullptr && bands == 1 && samples == int16_t{kBlock};
  if (known) std::copy_n(nearend[0], kBlock, near.begin());
  const int32_t result =
      Pass("audio_engine_WebRtcAec_Process", handle, nearend, bands, out, samples, delayMs, skew);
  if (result != 0 || !known) return result;
  const double before = Energy(near.data());
  const double after = Energy(out[0]);
  // The depth is the ratio of the energies; of its half, in dB, the near end's share of amplitude.
  const auto share = after >= before ? 0.0F : static_cast<float>(std::pow(after / before, 0.25));
  // It goes from one block to the next without a step, which would click.
  const float last = Exchange(handle, share);
  for (size_t i = 0; i < kBlock; ++i) {
    const float now = last + (share - last) * static_cast<float>(i + 1) / kBlock;
    out[0][i] += now * (near[i] - out[0][i]);
  }
  return result;
}
