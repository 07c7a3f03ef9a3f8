#pragma once

#include <cstdint>

#include "../common/visibility.h"

enum AECMOBILE_ERROR_CODE {
  AECMOBILE_NO_ERROR = 0,
  AECMOBILE_NO_MEMORY,        // No handle, or a handle that is as before the call.
  AECMOBILE_NOT_INITIALIZED,  // Audio, or a question about it, before AecMobile_Init.
  AECMOBILE_BAD_PARAMETER     // A null handle or pointer, a rate, count or length not as said.
};

// The echo canceller for handheld devices, mono, on the bands of zuwebrtc::AudioBuffer: 8 and
// 16 kHz in one band, 32 and 48 kHz in two and three. It finds the echo's delay by itself. Per
// 10 ms first the far end, then the near end. All operations that return a code accept no null
// handle: AECMOBILE_BAD_PARAMETER. Before AecMobile_Init no audio is taken and no state is known:
// AECMOBILE_NOT_INITIALIZED. One thread at a time.

// A new handle, owned by the caller until AecMobile_Free; null without memory. *error says which; a
// null `error` is left out.
ENGINE_API void* AecMobile_Creat(AECMOBILE_ERROR_CODE* error);

// Ends the canceller; the handle and the pointers that it gave are void afterwards.
ENGINE_API AECMOBILE_ERROR_CODE AecMobile_Free(void* handle);

// Starts afresh. The rates (Hz) of near end, far end and output must be one of 8000, 16000, 32000,
// 48000, all three the same.
ENGINE_API AECMOBILE_ERROR_CODE AecMobile_Init(void* handle, int nearRate, int farRate,
                                               int outRate);

// On asks for the new non-linear stage in every frame, whatever the flag of
// AecMobile_Process_Bands.
ENGINE_API AECMOBILE_ERROR_CODE AecMobile_SetAecNewOn(void* handle, bool on);

// Takes 10 ms of the far end, all bands in one signal: `frames` is a hundredth of the rate.
ENGINE_API AECMOBILE_ERROR_CODE AecMobile_BufferFarend(void* handle, const int16_t* farend,
                                                       int frames);

// Cleans 10 ms of the near end, [band][sample], into outBands, which may be the near end's own.
// newNlp: the new non-linear stage, which suppresses more; aec: echo cancellation; ns: noise
// suppression. Without aec the far end is ignored. alignedFar and alignedNear receive one pointer
// each to the lowest band as the canceller compared them; they belong to the handle and hold until
// its next operation. At 8 kHz without aec the output is late by exactly 48 samples.
ENGINE_API AECMOBILE_ERROR_CODE AecMobile_Process_Bands(void* handle,
                                                        const int16_t* const* nearBands, int bands,
                                                        int16_t framesPerBand,
                                                        int16_t* const* outBands,
                                                        int16_t** alignedFar, int16_t** alignedNear,
                                                        bool newNlp, bool aec, bool ns);

// *status: 1 when the last frame held echo, 0 when it did not.
ENGINE_API AECMOBILE_ERROR_CODE AecMobile_GetEchoState(void* handle, int* status);

// The estimate of the echo's delay in ms, 0 until known; -1 for a null handle and before
// AecMobile_Init.
ENGINE_API int AecMobile_getDelay(void* handle);
