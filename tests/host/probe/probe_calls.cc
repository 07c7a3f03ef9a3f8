#include "facilities/engine_calls.h"

// The probe's routines call nothing of the engine's interface.

namespace facilities {

std::span<const EngineCall> EngineCalls() { return {}; }
std::span<void*> EngineTargets() { return {}; }
std::span<void*> LibraryTargets() { return {}; }
std::span<const RoutineUse> RoutineUses() { return {}; }

}  // namespace facilities
