#include "support/allocation_count.h"

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {

std::atomic<size_t> g_allocations = 0;
std::atomic<size_t> g_largest = 0;
std::atomic<const char*> g_watched = nullptr;
std::atomic<size_t> g_ofWatched = 0;

thread_local int t_callsLeft = -1;

bool IsCalled(const char* thread) {
  char name[16] = {};
  pthread_getname_np(pthread_self(), name, sizeof name);
  return strcmp(name, thread) == 0;
}

void Count(size_t bytes) {
  ++g_allocations;
  if (const char* const watched = g_watched; watched != nullptr && IsCalled(watched)) ++g_ofWatched;
  size_t largest = g_largest;
  while (bytes > largest && !g_largest.compare_exchange_weak(largest, bytes)) {
  }
}

// An allocation, or null where it fails.
void* Allocate(size_t bytes) {
  Count(bytes);
  const bool fails = t_callsLeft >= 0 && t_callsLeft-- == 0;
  return fails ? nullptr : std::malloc(bytes);
}

}  // namespace

size_t AllocationCount() { return g_allocations; }

size_t LargestAllocation() { return g_largest.exchange(0); }

void WatchAllocationsOf(const char* thread) {
  g_watched = thread;
  g_ofWatched = 0;
}

size_t WatchedAllocations() { return g_ofWatched; }

bool FailAllocationAfter(int calls) { return std::exchange(t_callsLeft, calls) >= 0; }

void* operator new(size_t bytes) {
  if (void* memory = Allocate(bytes)) return memory;
  throw std::bad_alloc();
}

void* operator new(size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
