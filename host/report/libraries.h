#pragma once

#include <string>
#include <vector>

#include "base/json_parts.h"

namespace host {

// A library that this process has loaded, on which results may depend.
struct LibraryVersion {
  std::string name = {};
  std::string version = {};  // Empty when nobody knows it.
  bool own = false;  // The library has told it; else it is that of its package at build time.
};

// Those of the bench and of the engine that are loaded now, in the order of their names. They are
// looked for again only when this process has loaded or unloaded any. One thread at a time.
const std::vector<LibraryVersion>& LoadedLibraries();

// [{"name": "opus", "version": {"value": "libopus 1.3.1"}, "told_by": "library"}, ...]
Json LibrariesJson();

}  // namespace host
