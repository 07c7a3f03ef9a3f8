#include "live_bytes.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> g_live = 0;
std::atomic<size_t> g_most = 0;
size_t g_mark = 0;

void* Counted(void* memory) {
  if (memory == nullptr) return nullptr;
  const size_t live = g_live += malloc_usable_size(memory);
  size_t most = g_most;
  while (live > most && !g_most.compare_exchange_weak(most, live)) {
  }
  return memory;
}

void Release(void* memory) {
  if (memory == nullptr) return;
  g_live -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void MarkBytes() {
  g_mark = g_live;
  g_most = g_mark;
}

size_t MostBytesSinceMark() { return g_most - g_mark; }

void* operator new(size_t bytes) {
  if (void* const memory = Counted(std::malloc(bytes))) return memory;
  throw std::bad_alloc();
}

void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  return Counted(std::malloc(bytes));
}

void operator delete(void* memory) noexcept { Release(memory); }
void operator delete(void* memory, size_t) noexcept { Release(memory); }
