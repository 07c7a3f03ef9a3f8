#include "process/progress.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "harness/format_name.h"

namespace host {

namespace {

constexpr double kPeriod = 0.25;  // Seconds
constexpr double kPatience = 2;   // Seconds that a reader has when the limits are reached.

}  // namespace

Progress::Progress(std::string routine, uint64_t expectedFiles)
    : m_routine(std::move(routine)),
      m_expectedFiles(expectedFiles),
      m_terminal(isatty(STDERR_FILENO) != 0),
      m_output(STDOUT_FILENO),
      m_error(STDERR_FILENO) {}

void Progress::Show(double elapsed, uint64_t openedFiles) {
  if (!m_terminal || m_lineOpen || elapsed < m_next || m_error.waiting() > 0) return;
  m_next = elapsed + kPeriod;
  std::string files = std::to_string(openedFiles);
  if (openedFiles <= m_expectedFiles) files += " of " + std::to_string(m_expectedFiles);
  m_error.Add("\r\033[K" + m_routine + harness::FormatName("  %.0f s  files opened: ", elapsed) +
              files);
  m_shown = true;
}

void Progress::Print(Outlet& outlet, std::string_view text) {
  if (text.empty()) return;
  Clear();
  outlet.Add(text);
  m_lineOpen = text.back() != '\n';
}

bool Progress::Deliver(Limits& limits) {
  Clear();
  const double start = Now();
  while (m_output.waiting() + m_error.waiting() > 0) {
    const bool stopped = limits.Check() != Limits::Stop::kNone;
    if (stopped && Now() > start + kPatience) return false;
    pollfd watched[] = {
        {.fd = m_output.waiting() > 0 ? m_output.descriptor() : -1,
         .events = POLLOUT,
         .revents = 0},
        {.fd = m_error.waiting() > 0 ? m_error.descriptor() : -1, .events = POLLOUT, .revents = 0},
        {.fd = limits.signals().descriptor(), .events = POLLIN, .revents = 0}};
    poll(watched, std::size(watched), stopped ? 50 : 250);
    m_output.Send();
    m_error.Send();
  }
  return m_output.error() == 0;
}

void Progress::Clear() {
  if (m_shown) m_error.Add("\r\033[K");
  m_shown = false;
}

}  // namespace host
