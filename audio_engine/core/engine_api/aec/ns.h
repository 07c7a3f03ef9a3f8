#pragma once

#include <cstdint>

#include "../common/visibility.h"

// The noise suppressor of the echo-cancellation chain. All operations return 0, or -1 for a null
// handle or values that are not as said. One thread at a time.

// Fills in a new handle, owned by the caller until Ns_Free.
ENGINE_API int Ns_Create(void** handle);

// Ends the suppressor; the handle is void afterwards.
ENGINE_API int Ns_Free(void* handle);

// Starts afresh. rate: 8000 to 48000 Hz, 44100 among them.
ENGINE_API int Ns_Init(void* handle, unsigned int rate);

// How much noise is taken away: 0 about 6 dB, 1 about 10 dB, 2 (the most) 15 dB or more.
ENGINE_API int Ns_set_policy(void* handle, int policy);

// Cleans 10 ms, exactly trunc(rate * channels / 100) interleaved samples, from `in` into another
// buffer `out`. channels: 1 or 2, each cleaned by itself.
ENGINE_API int Ns_Process2(void* handle, const short* in, short* out, int16_t channels);
