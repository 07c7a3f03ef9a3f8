#pragma once

#include <string>

namespace desktop {

// Sets what GetIosDocPath and GetDebugPath return, for an owner whose files are not in the working
// directory. A path ends with a separator. To be called before anything else of the engine is in
// use.
void SetIosDocPath(const std::string& path);
void SetDebugPath(const std::string& path);

}  // namespace desktop
