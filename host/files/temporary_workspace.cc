#include "files/temporary_workspace.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/usage_error.h"

namespace host {

namespace fs = std::filesystem;

TemporaryWorkspace::TemporaryWorkspace() {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  if (error) throw UsageError{"no folder for temporary files: " + error.message()};
  m_path = (folder / "audio_bench.XXXXXX").string();
  if (mkdtemp(m_path.data()) != nullptr) return;
  throw UsageError{"cannot create a folder in " + folder.string() + ": " + strerror(errno)};
}

TemporaryWorkspace::~TemporaryWorkspace() {
  std::error_code ignored;
  if (!m_kept) fs::remove_all(m_path, ignored);
}

}  // namespace host
