#pragma once

#include <string>

namespace desktop {

// Sets what GetIosDocPath and GetDebugPath answer, for an owner whose files lie elsewhere than in
// the working directory; with a separator at the end. To be called before anything else of the
// engine is in use.
void SetIosDocPath(const std::string& path);
void SetDebugPath(const std::string& path);

}  // namespace desktop
