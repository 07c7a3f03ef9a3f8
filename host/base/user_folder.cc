#include "base/user_folder.h"

#include <cstdlib>

namespace host {

std::string UserFolder(const char* variable, const char* fallback) {
  const char* const folder = getenv(variable);
  // As the standard has it, one that is not absolute does not count.
  if (folder != nullptr && folder[0] == '/') return folder;
  const char* const home = getenv("HOME");
  if (home == nullptr || home[0] != '/') return "";
  return std::string(home) + "/" + fallback;
}

}  // namespace host
