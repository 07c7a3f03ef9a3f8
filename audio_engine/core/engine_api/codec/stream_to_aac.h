#pragma once

#include "../common/visibility.h"

// Converts `size` bytes of the plain stream of any one raw codec id into an ADTS stream of the same
// rate and channels (id 50: 48 kHz). ADTS is copied, AAC LC gets ADTS headers, all else is decoded
// and coded as AAC LC. Damaged frames are left out, and with a line in the log those that an int of
// bytes has no room for. Returns the bytes of the result and stores it in `*out`, to be released
// with free(); 0, and `*out` null, when there is no frame or no memory. Any thread.
ENGINE_API int TransZUStreamToAAC(const char* data, int size, unsigned char** out);
