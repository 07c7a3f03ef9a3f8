#include "process/signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace host {

namespace {

// A signal that the parent has switched off (nohup) stays off.
bool Ignored(int signal) {
  struct sigaction action;
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

HostSignals::HostSignals() {
  signal(SIGCHLD, SIG_DFL);  // A parent that ignores its children hands that down.
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP}) {
    if (!Ignored(signal)) sigaddset(&signals, signal);
  }
  sigprocmask(SIG_BLOCK, &signals, &m_before);
  m_descriptor = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
  if (m_descriptor < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
}

HostSignals::~HostSignals() {
  close(m_descriptor);
  sigprocmask(SIG_SETMASK, &m_before, nullptr);
}

int HostSignals::TakeInterruption() const {
  signalfd_siginfo info;
  while (read(m_descriptor, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    if (info.ssi_signo != SIGCHLD) return static_cast<int>(info.ssi_signo);
  }
  return 0;
}

void HostSignals::RestoreInChild() const {
  signal(SIGPIPE, SIG_DFL);  // The host ignores it.
  sigprocmask(SIG_SETMASK, &m_before, nullptr);
}

}  // namespace host
