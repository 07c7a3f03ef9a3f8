#pragma once

#include "engine_api/common/built_in.h"

// The engine beneath a control.

namespace controls {

// The desktop engine's function of this link name, as a function of type F.
template <typename F>
F* Beneath(const char* name) {
  return reinterpret_cast<F*>(AudioEngineBuiltIn(name));
}

}  // namespace controls
