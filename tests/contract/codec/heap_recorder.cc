// malloc and free as the routines call them, recorded while a test has an engine. Memory that a
// routine never frees stays reachable, so that it does not look lost.

#include <cstdlib>
#include <set>
#include <string>

#include "fake_engine/fake_engine.h"

extern "C" {
void* __real_malloc(size_t bytes);
void __real_free(void* memory);
void* __wrap_malloc(size_t bytes);
void __wrap_free(void* memory);
}

namespace {

std::set<void*>& Kept() {
  static auto* const kept = new std::set<void*>;
  return *kept;
}

}  // namespace

void* __wrap_malloc(size_t bytes) {
  void* const memory = __real_malloc(bytes);
  if (!FakeEngine::HasCurrent()) return memory;
  Kept().insert(memory);
  const std::string name = FakeEngine::Current().Buffer(memory);
  FakeEngine::Current().Record("malloc(%zu) = %s", bytes, name.c_str());
  return memory;
}

void __wrap_free(void* memory) {
  if (FakeEngine::HasCurrent() && Kept().erase(memory) == 1) {
    FakeEngine::Current().Record("free(%s)", FakeEngine::Current().Buffer(memory).c_str());
  }
  __real_free(memory);
}
