#pragma once

#include <string>

// The fake's folders.
struct PathsScript {
  std::string documents = {};
  std::string debug = {};
};
