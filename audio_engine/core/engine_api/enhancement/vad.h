#pragma once

#include "../common/visibility.h"

// The life cycle of a voice activity detector with a C interface; there is no operation that feeds
// it. The operations return 0, or -1 for a null handle or for a value that they do not take. A
// handle belongs to one thread at a time.
extern "C" {

// A new detector, in *handle, owned by the caller until WebRtcVad_Free. -1 when there is no memory;
// *handle is null then.
ENGINE_API int WebRtcVad_Create(void** handle) ENGINE_C_NAME(WebRtcVad_Create);

// Makes a detector ready: mode 0, nothing heard yet. May be repeated.
ENGINE_API int WebRtcVad_Init(void* handle) ENGINE_C_NAME(WebRtcVad_Init);

// How strict it is, from 0 (takes the most for speech) to 3 (the strictest). -1 before
// WebRtcVad_Init.
ENGINE_API int WebRtcVad_set_mode(void* handle, int mode) ENGINE_C_NAME(WebRtcVad_set_mode);

// Destroys a detector in any state, also one that was never initialised.
ENGINE_API int WebRtcVad_Free(void* handle) ENGINE_C_NAME(WebRtcVad_Free);

}  // extern "C"
