// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <type_traits>

#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"

[[maybe_unused]] constexpr void (*kLogger)(const char*, ...) = OutputDebugInfo;

static_assert(std::is_same_v<decltype(SleepMs), void(int)>);

static_assert(std::is_same_v<decltype(GetExactTickCount), uint32_t()>);
