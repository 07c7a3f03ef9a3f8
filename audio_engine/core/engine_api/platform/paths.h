#pragma once

#include <string>

#include "../common/visibility.h"

// Folders that tests put in front of the names of their files. A path that is not empty ends in a
// separator. Both are empty in the desktop engine until its owner sets them, and then the files lie
// in the working directory. Any thread.

// The application's documents directory.
ENGINE_API std::string GetIosDocPath();

// Where the engine and its tests leave what is looked at afterwards.
ENGINE_API std::string GetDebugPath();
