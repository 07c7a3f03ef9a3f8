#pragma once

#include <string>

namespace host {

// A folder of the user's, after the standard of such folders: the one that an environment variable
// such as XDG_CONFIG_HOME names, else `fallback` (".config") in HOME; empty where neither is set to
// an absolute path.
std::string UserFolder(const char* variable, const char* fallback);

}  // namespace host
