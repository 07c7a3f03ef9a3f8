#include "facilities/engine_calls.h"

namespace facilities {

namespace {

constexpr RoutineUse kUses[] = {
#include "routine_uses.inc"
};

}  // namespace

std::span<const RoutineUse> RoutineUses() { return kUses; }

}  // namespace facilities
