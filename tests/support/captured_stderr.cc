#include "support/captured_stderr.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <sstream>

CapturedStderr::CapturedStderr() {
  std::string name = std::filesystem::temp_directory_path() / "captured_stderr_XXXXXX";
  m_file = mkostemp(name.data(), O_CLOEXEC);
  unlink(name.c_str());
  m_before = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
  dup2(m_file, STDERR_FILENO);
}

CapturedStderr::~CapturedStderr() {
  dup2(m_before, STDERR_FILENO);
  close(m_before);
  close(m_file);
}

std::string CapturedStderr::Text() const {
  std::string text(static_cast<size_t>(lseek(m_file, 0, SEEK_END)), '\0');
  const ssize_t got = pread(m_file, text.data(), text.size(), 0);
  text.resize(got > 0 ? static_cast<size_t>(got) : 0);
  return text;
}

std::vector<std::string> CapturedStderr::Lines() const {
  std::istringstream text(Text());
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}
