#pragma once

#include <cstdio>

namespace desktop {

// Opens a file as fopen does, but for a FIFO, which is refused (null, errno ENXIO): opening one
// waits for its other end, perhaps for ever.
FILE* OpenUnlessFifo(const char* name, const char* mode);

}  // namespace desktop
