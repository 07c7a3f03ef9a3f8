#include "suite/case_process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

#include "base/usage_error.h"
#include "files/new_file.h"

namespace host {

namespace {

// In the process of the case.
[[noreturn]] void LiveAsCase(const HostSignals& signals, const std::function<Json()>& work,
                             pid_t suite, int record) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != suite) _exit(1);
  signals.RestoreInChild();
  signal(SIGPIPE, SIG_IGN);
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (nothing >= 0) dup2(nothing, STDIN_FILENO);
  bool good = false;
  try {
    const std::string text = work().dump(-1, ' ', false, Json::error_handler_t::replace);
    good = WriteAll(record, text.data(), text.size());
  } catch (const UsageError& error) {
    fprintf(stderr, "audio_bench: %s\n", error.message.c_str());
  } catch (const std::exception& error) {
    fprintf(stderr, "audio_bench: %s\n", error.what());
  }
  fflush(nullptr);
  _exit(good ? 0 : 1);
}

}  // namespace

CaseProcess::CaseProcess(const HostSignals& signals, const std::function<Json()>& work)
    : m_record(memfd_create("record", MFD_CLOEXEC)) {
  if (m_record < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
  fflush(nullptr);  // What is waiting to be written is written once.
  const pid_t suite = getpid();
  m_process = fork();
  if (m_process == 0) LiveAsCase(signals, work, suite, m_record);
  if (m_process < 0) {
    const int error = errno;
    close(m_record);
    throw std::system_error(error, std::generic_category(), "fork");
  }
}

CaseProcess::~CaseProcess() {
  if (m_process > 0 && !m_ended) {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
  }
  if (m_record >= 0) close(m_record);
}

CaseProcess::CaseProcess(CaseProcess&& other) noexcept
    : m_process(std::exchange(other.m_process, -1)),
      m_record(std::exchange(other.m_record, -1)),
      m_status(other.m_status),
      m_ended(other.m_ended) {}

bool CaseProcess::HasEnded() {
  m_ended = m_ended || waitpid(m_process, &m_status, WNOHANG) == m_process;
  return m_ended;
}

Json CaseProcess::Record() const {
  std::string text;
  char bytes[65536];
  off_t at = 0;
  for (ssize_t count = 0; (count = pread(m_record, bytes, sizeof bytes, at)) > 0; at += count) {
    text.append(bytes, static_cast<size_t>(count));
  }
  return m_status == 0 ? Json::parse(text, nullptr, false) : Json();
}

std::string CaseProcess::End() const {
  if (!WIFSIGNALED(m_status)) return "exit code " + std::to_string(WEXITSTATUS(m_status));
  const int signal = WTERMSIG(m_status);
  return "signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
}

void CaseProcess::Stop(int signal) const {
  if (!m_ended) kill(m_process, signal);
}

}  // namespace host
