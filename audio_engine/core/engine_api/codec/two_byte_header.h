#pragma once

#include "../common/visibility.h"

// The length in bytes, header included, of the frame that starts with this word (the low byte comes
// first in the stream): the low ten bits and 2. 0 when the top six bits, the mark 0xFC00, are not
// all set. Any thread.
ENGINE_API int ParseTwoByteHeader(unsigned short header);
