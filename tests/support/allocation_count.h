#pragma once

#include <cstddef>

// How often this program has called operator new. Link allocation_count.cc for it.
size_t AllocationCount();
