#include "process/relay.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

namespace host {

using std::string_literals::operator""s;

namespace {

constexpr size_t kMost = 65536;  // Bytes of one read; what a pipe holds.

// What one read gives; 0 when there is nothing now. At the end of the pipe it is closed.
size_t ReadPipe(int& pipe, char* bytes) {
  if (pipe < 0) return 0;
  const ssize_t got = read(pipe, bytes, kMost);
  if (got > 0) return static_cast<size_t>(got);
  if (got == 0) {
    close(pipe);
    pipe = -1;
  }
  return 0;
}

}  // namespace

Relay::Relay(FILE* log, Progress& progress) : m_log(log), m_progress(progress) {
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
  pollfd watched[] = {{.fd = m_output.read, .events = POLLIN, .revents = 0},
                      {.fd = m_errors.read, .events = POLLIN, .revents = 0},
                      {.fd = other, .events = POLLIN, .revents = 0}};
  poll(watched, 3, static_cast<int>(std::max(seconds, 0.0) * 1000) + 1);
  CarryOutput();
  CarryLog();
}

void Relay::Drain() {
  for (int i = 0; i < 16 && CarryOutput(); ++i) {
  }
  for (int i = 0; i < 16 && CarryLog(); ++i) {
  }
  if (m_lastOutput != '\n') m_progress.Print(stdout, "\n");
}

void Relay::Close(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

bool Relay::CarryOutput() {
  char bytes[kMost];
  const size_t count = ReadPipe(m_output.read, bytes);
  m_progress.Print(stdout, {bytes, count});
  if (count > 0) m_lastOutput = bytes[count - 1];
  return count > 0;
}

bool Relay::CarryLog() {
  char bytes[kMost];
  const size_t count = ReadPipe(m_errors.read, bytes);
  m_progress.Print(stderr, {bytes, count});
  const bool written = fwrite(bytes, 1, count, m_log) == count && fflush(m_log) == 0;
  if (!written && !std::exchange(m_logFailed, true)) {
    m_progress.Print(stderr,
                     "audio_bench: the log file is not complete: "s + strerror(errno) + "\n");
  }
  return count > 0;
}

}  // namespace host
