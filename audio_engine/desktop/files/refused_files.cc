#include "desktop/files/refused_files.h"

#include <exception>
#include <mutex>

#include "engine_api/platform/log.h"

namespace desktop {

namespace {

constexpr size_t kMaxRemembered = 64;

struct Refused {
  std::mutex mutex;
  std::vector<RefusedFile> files;
};

// Lives until the process ends: a thread of the engine may outlive main.
Refused& AllRefused() {
  static auto* const refused = new Refused;
  return *refused;
}

}  // namespace

void RefuseFile(const char* name, const char* what, const char* reason) {
  OutputDebugInfo("%s: %s: %s", name, what, reason);
  try {
    Refused& refused = AllRefused();
    const std::scoped_lock lock(refused.mutex);
    if (refused.files.size() < kMaxRemembered) refused.files.push_back({name, reason});
  } catch (const std::exception&) {
    // Memory is short; the log has the line.
  }
}

std::vector<RefusedFile> RefusedFiles() {
  Refused& refused = AllRefused();
  const std::scoped_lock lock(refused.mutex);
  return refused.files;
}

}  // namespace desktop
