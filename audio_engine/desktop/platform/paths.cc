#include "engine_api/platform/paths.h"

#include "desktop/platform/paths.h"

namespace {

std::string& DocumentsPath() {
  // Lives as long as the process.
  static auto* const path = new std::string;
  return *path;
}

std::string& DebugPath() {
  static auto* const path = new std::string;
  return *path;
}

}  // namespace

std::string GetIosDocPath() { return DocumentsPath(); }

std::string GetDebugPath() { return DebugPath(); }

namespace desktop {

void SetIosDocPath(const std::string& path) { DocumentsPath() = path; }

void SetDebugPath(const std::string& path) { DebugPath() = path; }

}  // namespace desktop
