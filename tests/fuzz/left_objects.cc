#include <utility>

#include "fuzz/left_behind.h"

// Stands in for harness::LeaveAlive(const void*), under the linker's name for it.
extern "C" void __wrap__ZN7harness10LeaveAliveEPKv(const void* object);

namespace {

std::vector<const void*>& LeftObjects() {
  static std::vector<const void*> objects;
  return objects;
}

}  // namespace

void __wrap__ZN7harness10LeaveAliveEPKv(const void* object) { LeftObjects().push_back(object); }

std::vector<const void*> TakeLeftObjects() { return std::exchange(LeftObjects(), {}); }
