#pragma once

#include <cstddef>

// How often this program has called operator new. Link allocation_count.cc for it.
size_t AllocationCount();

// The most bytes that one call of operator new has asked for since the call of this before.
size_t LargestAllocation();

// Counts from now on how often the threads of that name call operator new; null for none.
void WatchAllocationsOf(const char* thread);
size_t WatchedAllocations();

// Lets the calling thread's operator new fail once, after so many more calls. Returns whether the
// failure of the call of this before is still to come. Negative: never.
bool FailAllocationAfter(int calls);
