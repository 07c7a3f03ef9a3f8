#include "process/outlet.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace host {

// A pipe or a terminal is opened once more for writing without waiting, because switching that on
// for the descriptor itself would switch it on for all processes that share it.
Outlet::Outlet(int descriptor) : m_descriptor(descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return;
  m_socket = S_ISSOCK(status.st_mode);
  if (!S_ISFIFO(status.st_mode) && isatty(descriptor) == 0) return;
  const std::string again = "/proc/self/fd/" + std::to_string(descriptor);
  const int opened = open(again.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (opened < 0) return;
  m_descriptor = opened;
  m_ownDescriptor = true;
}

Outlet::~Outlet() {
  if (m_ownDescriptor) close(m_descriptor);
}

void Outlet::Add(std::string_view text) {
  if (m_error == 0) m_text += text;
  Send();
}

void Outlet::Send() {
  size_t sent = 0;
  while (m_error == 0 && sent < m_text.size()) {
    const ssize_t count = Write(std::string_view(m_text).substr(sent));
    if (count >= 0) {
      sent += static_cast<size_t>(count);
    } else if (errno == EAGAIN) {
      break;
    } else if (errno != EINTR) {
      m_error = errno;
    }
  }
  m_text.erase(0, m_error == 0 ? sent : m_text.size());
}

long Outlet::Write(std::string_view text) const {
  if (m_socket) return send(m_descriptor, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  if (m_ownDescriptor) return write(m_descriptor, text.data(), text.size());
  // A pipe that could not be opened again takes this much without waiting when it takes anything.
  pollfd ready = {.fd = m_descriptor, .events = POLLOUT, .revents = 0};
  if (poll(&ready, 1, 0) == 0) {
    errno = EAGAIN;
    return -1;
  }
  return write(m_descriptor, text.data(), std::min<size_t>(text.size(), PIPE_BUF));
}

bool WriteWithin(Limits& limits, int descriptor, std::string_view text) {
  const double patience = Now() + kPatience;
  Outlet outlet(descriptor);
  outlet.Add(text);
  while (outlet.waiting() > 0) {
    const bool stopped = limits.Check() != Limits::Stop::kNone;
    if (stopped && Now() > patience) break;
    pollfd watched[] = {
        {.fd = outlet.descriptor(), .events = POLLOUT, .revents = 0},
        {.fd = stopped ? -1 : limits.signals().descriptor(), .events = POLLIN, .revents = 0}};
    poll(watched, std::size(watched), stopped ? 50 : 250);
    outlet.Send();
  }
  errno = outlet.waiting() > 0 ? EAGAIN : outlet.error();
  return errno == 0;
}

}  // namespace host
