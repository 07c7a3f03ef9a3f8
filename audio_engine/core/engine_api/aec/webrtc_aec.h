#pragma once

#include <cstdint>

#include "../common/visibility.h"

// How strongly the echo that the filter leaves is suppressed, from the least to the most; more
// costs more of a near talker who speaks at the same time.
enum { kAecNlpConservative = 0, kAecNlpModerate, kAecNlpAggressive };

struct AecConfig {
  int16_t nlpMode;        // Suppression of what the filter leaves; see above.
  int16_t skewMode;       // Compensation of clock skew; not used, skew is ignored.
  int16_t metricsMode;    // Not used.
  int32_t delay_logging;  // Not used.
};

// The full-band echo canceller, 16 kHz mono. Per 10 ms first the far end, then the near end. All
// operations return 0, or -1 for a null handle or values that are not as said. One thread at a
// time.
extern "C" {

// Fills in a new handle, owned by the caller until WebRtcAec_Free; null and -1 without memory.
ENGINE_API int32_t WebRtcAec_Create(void** handle) ENGINE_C_NAME(WebRtcAec_Create);

// Ends the canceller; the handle is void afterwards.
ENGINE_API int32_t WebRtcAec_Free(void* handle) ENGINE_C_NAME(WebRtcAec_Free);

// Starts afresh with moderate suppression. rate and cardRate: 16000 Hz.
ENGINE_API int32_t WebRtcAec_Init(void* handle, int32_t rate, int32_t cardRate)
    ENGINE_C_NAME(WebRtcAec_Init);

// Takes effect with the next block. -1, and nothing changes, for an nlpMode that is none.
ENGINE_API int32_t WebRtcAec_set_config(void* handle, AecConfig config)
    ENGINE_C_NAME(WebRtcAec_set_config);

// Takes 160 samples of the far end, floats in the 16-bit range.
ENGINE_API int32_t WebRtcAec_BufferFarend(void* handle, const float* farend, int16_t samples)
    ENGINE_C_NAME(WebRtcAec_BufferFarend);

// Cancels the echo in 160 samples (one band) of `nearend` into `out`, in place or not; both in the
// 16-bit range, the result never beyond -32768..32767. delayMs: how late the echo is, clamped to
// 0..500.
ENGINE_API int32_t WebRtcAec_Process(void* handle, const float* const* nearend, int32_t bands,
                                     float* const* out, int16_t samples, int16_t delayMs,
                                     int32_t skew) ENGINE_C_NAME(WebRtcAec_Process);
}
