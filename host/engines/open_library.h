#pragma once

#include <functional>
#include <string>

namespace host {

// An engine's library in this process, from here on to its end. What it exports is seen by nobody
// else, so that what it has beside the interface comes between no two others.
class OpenLibrary {
 public:
  // Throws UsageError when it cannot be opened.
  explicit OpenLibrary(const std::string& path);

  // One that it exports. Throws UsageError where there is none.
  void* Function(const char* name) const;

 private:
  std::string m_path;
  void* m_library;
};

// Does in a process of its own what opens a library, and throws UsageError when that does, crashes,
// or takes longer than 10 s.
void TryLibrary(const std::string& path, const std::function<void()>& open);

}  // namespace host
