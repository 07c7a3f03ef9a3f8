#pragma once

#include "../common/visibility.h"

// Says whether a signal still holds echo of the far end: of a canceller's output, or of a near end.
// Mono, 16 bit. One thread at a time.

// A new detector, owned by the caller until echo_detection_free; null for a rate outside 8000 to
// 48000 Hz, or without memory. config: null. maxDelayMs: the longest echo that is looked for, up to
// 500 ms.
ENGINE_API void* echo_detection_create(const void* config, int rate, int maxDelayMs);

// Takes `count` samples of both ends, any number. The first 20 ms, often a click, are passed over.
// Returns 0, or -1 when a pointer is null.
ENGINE_API int echo_detection_process(void* detector, const short* farend, const short* nearend,
                                      int count);

// The verdict over all that was taken so far: 1 echo, 0 none (or not enough heard yet).
ENGINE_API int get_echo_detection_result(void* detector);

// Ends the detector; the handle is void afterwards. Null is harmless.
ENGINE_API void echo_detection_free(void* detector);
