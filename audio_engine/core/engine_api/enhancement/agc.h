#pragma once

#include <cstdint>

#include "../common/visibility.h"

enum {
  kAgcModeUnchanged,        // Samples and volume pass as they are.
  kAgcModeAdaptiveAnalog,   // Follows the talker; also asks for a better microphone volume.
  kAgcModeAdaptiveDigital,  // Follows the talker.
  kAgcModeFixedDigital      // One gain: compressionGaindB.
};

struct WebRtcAgcConfig {
  int16_t targetLevelDbfs;    // Peak level wanted, dB below full scale, 0 to 31.
  int16_t compressionGaindB;  // The most that fixed mode amplifies by, 0 to 90 dB.
  uint8_t limiterEnable;      // 1: no sample is let above the target level.
};

// Gain control of mono 16-bit audio, 10 ms at a time, without lag. In the adaptive modes quiet
// speech is amplified whatever compressionGaindB says. All operations return 0, or -1 for a null
// handle or values that are not as said. One thread at a time.
extern "C" {

// Fills in a new handle, owned by the caller until WebRtcAgc_Free.
ENGINE_API int WebRtcAgc_Create(void** handle) ENGINE_C_NAME(WebRtcAgc_Create);

// Ends the gain control; the handle is void afterwards.
ENGINE_API int WebRtcAgc_Free(void* handle) ENGINE_C_NAME(WebRtcAgc_Free);

// Starts afresh. minLevel, maxLevel: the microphone's range; rate: 8000, 16000, 32000 or 48000 Hz.
ENGINE_API int WebRtcAgc_Init(void* handle, int32_t minLevel, int32_t maxLevel, int16_t mode,
                              uint32_t rate) ENGINE_C_NAME(WebRtcAgc_Init);

// Starts the gain afresh with these settings. -1, and nothing changes, for one out of its range.
ENGINE_API int WebRtcAgc_set_config(void* handle, WebRtcAgcConfig config)
    ENGINE_C_NAME(WebRtcAgc_set_config);

// A microphone whose volume is made by gain: scales one band of `samples` samples in place for the
// volume micLevelIn and reports the volume it stands for, both in the range of WebRtcAgc_Init.
// Level 0 means that no volume was ever set: unity gain, not mute.
ENGINE_API int WebRtcAgc_VirtualMic(void* handle, int16_t* const* bands, int16_t bandCount,
                                    int16_t samples, int32_t micLevelIn, int32_t* micLevelOut)
    ENGINE_C_NAME(WebRtcAgc_VirtualMic);

// Brings one band of `samples` samples to its level, in place or not. *micLevelOut: the volume that
// the microphone should have. echo: not 0 when the block may be echo, which teaches nothing.
// *saturationWarning: 1 when the input is at full scale.
ENGINE_API int WebRtcAgc_Process(void* handle, const int16_t* const* in, int16_t bandCount,
                                 int16_t samples, int16_t* const* out, int32_t micLevelIn,
                                 int32_t* micLevelOut, int16_t echo, uint8_t* saturationWarning)
    ENGINE_C_NAME(WebRtcAgc_Process);
}
