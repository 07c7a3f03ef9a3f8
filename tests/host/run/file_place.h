#pragma once

#include <string>

#include "run/judge.h"

namespace host {

// A file of the routine "/name" that is in the workspace "work".
inline FilePlace Place(const std::string& name, int blockBytes = 0) {
  return {.use = {.blockBytes = blockBytes}, .name = name, .path = "work" + name};
}

}  // namespace host
