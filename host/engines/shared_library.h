#pragma once

#include <set>
#include <string>

namespace host {

// What the file of a shared library tells without being opened as one, so that nothing of it runs.
struct SharedLibrary {
  std::set<std::string> exported;  // The names that it defines for others.
  std::string buildId;             // Hexadecimal; empty when it was linked without one.
  std::string digest;              // SHA-256 of the file.
};

// Throws UsageError, in a sentence that begins with the path, when the file cannot be read or is no
// shared library for this processor.
SharedLibrary ReadSharedLibrary(const std::string& path);

// The build id of this program, as it is in memory.
std::string OwnBuildId();

}  // namespace host
