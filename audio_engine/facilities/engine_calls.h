#pragma once

#include <span>

// Where calls of the engine's interface go, in a program that is linked with engine_calls.

namespace facilities {

struct EngineCall {
  const char* facility;  // "effects/drc", as its header is called in engine_api.
  const char* name;      // As the linker knows the function.
};

// Every function of every facility, those of one facility together.
std::span<const EngineCall> EngineCalls();

// The function that each of them reaches, by its index: at first that of the desktop engine. To be
// changed before the first of them is called.
std::span<void*> EngineTargets();

// The same for libraries that call the interface; at first theirs reach nothing.
std::span<void*> LibraryTargets();

// What a routine of the bench uses of the interface, by itself or by helpers that it calls.
struct RoutineUse {
  const char* routine;
  const char* facility;
};
std::span<const RoutineUse> RoutineUses();

}  // namespace facilities
