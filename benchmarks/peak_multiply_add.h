#pragma once

#include <cstddef>

// Runs at least `count` multiply-adds of floats as fast as this machine does them, all in
// registers, with the vector instructions that the filters run on. Returns how many it were.
size_t RunPeakMultiplyAdds(size_t count);
