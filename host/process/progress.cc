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
constexpr uint64_t kMany = 20;    // Files from which on what is done tells more than what is open.

}  // namespace

Progress::Progress(std::string routine, uint64_t expectedFiles)
    : m_routine(std::move(routine)),
      m_expectedFiles(expectedFiles),
      m_terminal(isatty(STDERR_FILENO) != 0),
      m_output(STDOUT_FILENO),
      m_error(STDERR_FILENO) {}

// Returns what has become of the files so far, and for many files how long the rest will take at
// this pace.
std::string Progress::Files(double elapsed, const FileActivity& files) const {
  const uint64_t opened = files.opened;
  const std::string of = " of " + std::to_string(m_expectedFiles);
  if (m_expectedFiles < kMany) {
    return "files opened: " + std::to_string(opened) + (opened <= m_expectedFiles ? of : "");
  }
  const uint64_t done = files.done;
  std::string text = "files done: " + std::to_string(done);
  if (done > m_expectedFiles) return text;
  text += of;
  if (done == 0 || done == m_expectedFiles) return text;
  const double left = static_cast<double>(m_expectedFiles - done) / static_cast<double>(done);
  return text + harness::FormatName("  about %.0f s left", elapsed * left);
}

void Progress::Show(double elapsed, const FileActivity& files) {
  if (!m_terminal || m_lineOpen || elapsed < m_next || m_error.waiting() > 0) return;
  m_next = elapsed + kPeriod;
  m_error.Add("\r\033[K" + m_routine + harness::FormatName("  %.0f s  ", elapsed) +
              Files(elapsed, files));
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
    if (stopped && Now() > start + kPatience) return m_output.waiting() == 0;
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
