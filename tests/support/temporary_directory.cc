#include "support/temporary_directory.h"

#include <stdlib.h>

#include <string>

TemporaryDirectory::TemporaryDirectory() : m_before(std::filesystem::current_path()) {
  std::string name = std::filesystem::temp_directory_path() / "audio_tester_XXXXXX";
  m_path = mkdtemp(name.data());
  std::filesystem::current_path(m_path);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::filesystem::current_path(m_before);
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}
