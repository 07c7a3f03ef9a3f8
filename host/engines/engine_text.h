#pragma once

#include <cstddef>
#include <string>

#include "base/json_parts.h"
#include "engines/engine.h"

namespace host {

// For readers: who answers, its build id, and for what, in lines of at most `width` columns.
std::string EngineText(const Engine& engine, size_t width);

// The library and what it answers for, in short.
std::string EngineLine(const Engine& engine);

// The same for programs: {"name": ..., "version": ..., "interface_version": ..., "answers": [...]}.
Json EngineJson(const Engine& engine);

}  // namespace host
