#pragma once

#include <cstddef>

// How often this program has called operator new. Link allocation_count.cc for it.
size_t AllocationCount();

// The most bytes that one call of operator new has asked for since the call of this before.
size_t LargestAllocation();
