#include "support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> g_allocations = 0;

}  // namespace

size_t AllocationCount() { return g_allocations; }

void* operator new(size_t bytes) {
  ++g_allocations;
  if (void* memory = std::malloc(bytes)) return memory;
  throw std::bad_alloc();
}

void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  ++g_allocations;
  return std::malloc(bytes);
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
