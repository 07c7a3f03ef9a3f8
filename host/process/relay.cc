#include "process/relay.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>

namespace host {

namespace {

constexpr size_t kMaxRead = 65536;  // Bytes of one read; what a pipe holds.

// Returns how many bytes one read gives; 0 when there is nothing now. At the end of the pipe it is
// closed.
size_t ReadPipe(int& pipe, char* bytes) {
  if (pipe < 0) return 0;
  const ssize_t got = read(pipe, bytes, kMaxRead);
  if (got > 0) return static_cast<size_t>(got);
  if (got == 0) {
    close(pipe);
    pipe = -1;
  }
  return 0;
}

}  // namespace

Relay::Relay(FILE* log, const Hearing& hearing, Progress& progress)
    : m_log(log), m_hearing(hearing), m_progress(progress) {
  for (Pipe* pipe : {&m_output, &m_errors}) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
      throw std::system_error(errno, std::generic_category(), "pipe");
    *pipe = {.read = ends[0], .write = ends[1]};
    fcntl(pipe->read, F_SETFL, O_NONBLOCK);
  }
}

Relay::~Relay() {
  for (Pipe* pipe : {&m_output, &m_errors}) {
    Close(pipe->read);
    Close(pipe->write);
  }
}

void Relay::BecomeChild() {
  dup2(m_output.write, STDOUT_FILENO);
  dup2(m_errors.write, STDERR_FILENO);
  for (Pipe* pipe : {&m_output, &m_errors}) {
    Close(pipe->read);
    Close(pipe->write);
  }
}

void Relay::BecomeHost() {
  Close(m_output.write);
  Close(m_errors.write);
}

void Relay::Wait(int other, double seconds) {
  Outlet& output = m_progress.output();
  Outlet& error = m_progress.error();
  // A negative descriptor is not watched.
  pollfd watched[] = {
      {.fd = output.waiting() > 0 ? -1 : m_output.read, .events = POLLIN, .revents = 0},
      {.fd = error.waiting() > 0 ? -1 : m_errors.read, .events = POLLIN, .revents = 0},
      {.fd = output.waiting() > 0 ? output.descriptor() : -1, .events = POLLOUT, .revents = 0},
      {.fd = error.waiting() > 0 ? error.descriptor() : -1, .events = POLLOUT, .revents = 0},
      {.fd = other, .events = POLLIN, .revents = 0}};
  poll(watched, std::size(watched), static_cast<int>(std::max(seconds, 0.0) * 1000) + 1);
  output.Send();
  error.Send();
  if (output.waiting() == 0) CarryOutput();
  if (error.waiting() == 0) CarryLog();
}

bool Relay::Drain(Limits& limits, std::string_view lastWords) {
  for (int i = 0; i < 16 && CarryOutput(); ++i) {
  }
  for (int i = 0; i < 16 && CarryLog(); ++i) {
  }
  if (!lastWords.empty()) {
    if (m_lastLogged != '\n') AddToLog("\n");
    AddToLog(lastWords);
  }
  if (m_lastOutput != '\n') m_progress.PrintOutput("\n");
  return m_progress.Deliver(limits);
}

void Relay::Close(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

bool Relay::CarryOutput() {
  char bytes[kMaxRead];
  const size_t count = ReadPipe(m_output.read, bytes);
  m_progress.PrintOutput({bytes, count});
  m_hearing.output({bytes, count});
  if (count > 0) m_lastOutput = bytes[count - 1];
  return count > 0;
}

bool Relay::CarryLog() {
  char bytes[kMaxRead];
  const size_t count = ReadPipe(m_errors.read, bytes);
  AddToLog({bytes, count});
  if (count > 0) m_lastLogged = bytes[count - 1];
  m_hearing.log({bytes, count});
  return count > 0;
}

void Relay::AddToLog(std::string_view text) {
  m_progress.PrintError(text);
  const bool written = fwrite(text.data(), 1, text.size(), m_log) == text.size();
  if ((!written || fflush(m_log) != 0) && m_logFailure == 0) m_logFailure = errno;
}

}  // namespace host
