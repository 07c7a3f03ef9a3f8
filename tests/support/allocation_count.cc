#include "support/allocation_count.h"

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<size_t> g_allocations = 0;
std::atomic<size_t> g_largest = 0;
std::atomic<const char*> g_watched = nullptr;
std::atomic<size_t> g_ofWatched = 0;

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

}  // namespace

size_t AllocationCount() { return g_allocations; }

size_t LargestAllocation() { return g_largest.exchange(0); }

void WatchAllocationsOf(const char* thread) {
  g_watched = thread;
  g_ofWatched = 0;
}

size_t WatchedAllocations() { return g_ofWatched; }

void* operator new(size_t bytes) {
  Count(bytes);
  if (void* memory = std::malloc(bytes)) return memory;
  throw std::bad_alloc();
}

void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  Count(bytes);
  return std::malloc(bytes);
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
