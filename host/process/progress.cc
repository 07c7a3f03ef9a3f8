#include "process/progress.h"

#include <unistd.h>

#include <utility>

namespace host {

namespace {

constexpr double kPeriod = 0.25;  // Seconds

}  // namespace

Progress::Progress(std::string routine, uint64_t expectedFiles)
    : m_routine(std::move(routine)),
      m_expectedFiles(expectedFiles),
      m_terminal(isatty(STDERR_FILENO) != 0) {}

void Progress::Show(double elapsed, uint64_t openedFiles) {
  if (!m_terminal || m_lineOpen || elapsed < m_next) return;
  m_next = elapsed + kPeriod;
  std::string files = std::to_string(openedFiles);
  if (openedFiles <= m_expectedFiles) files += " of " + std::to_string(m_expectedFiles);
  fprintf(stderr, "\r\033[K%s  %.0f s  files opened: %s", m_routine.c_str(), elapsed,
          files.c_str());
  fflush(stderr);
  m_shown = true;
}

void Progress::Print(FILE* stream, std::string_view text) {
  Clear();
  fwrite(text.data(), 1, text.size(), stream);
  fflush(stream);
  if (!text.empty()) m_lineOpen = text.back() != '\n';
}

void Progress::Clear() {
  if (!m_shown) return;
  fputs("\r\033[K", stderr);
  fflush(stderr);
  m_shown = false;
}

}  // namespace host
