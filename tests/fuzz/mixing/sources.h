#pragma once

#include <cstdint>

#include "desktop/files/file_source.h"

// Reads a source to its end, at most about `most` frames, once more after going back, and in blocks
// of another size: format and counts must be what the header of FileSource says, and the samples
// the same if `sameAgain`. Returns how many frames there were.
uint64_t ReadTwice(desktop::FileSource& source, uint64_t most, bool sameAgain);
