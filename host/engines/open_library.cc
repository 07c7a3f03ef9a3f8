#include "engines/open_library.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <system_error>

#include "base/usage_error.h"

namespace host {

namespace {

constexpr int kTrialMilliseconds = 10000;

// What dlopen says, which mostly begins with the path.
std::string Fault(const std::string& path) {
  const char* const fault = dlerror();
  std::string text = fault == nullptr ? "unknown fault" : fault;
  if (text.starts_with(path + ": ")) text.erase(0, path.size() + 2);
  return text;
}

// What is thrown goes into the pipe; nothing when all went well.
[[noreturn]] void LiveAsTrial(const std::function<void()>& open, int result) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) dup2(nothing, stream);
  std::string fault;
  try {
    open();
  } catch (const UsageError& error) {
    fault = error.message;
  } catch (const std::exception& error) {
    fault = error.what();
  }
  const bool told = write(result, fault.data(), fault.size()) == static_cast<ssize_t>(fault.size());
  _exit(told ? 0 : 1);
}

// All that comes out of a pipe to its end. False when that takes too long.
bool ReadToEnd(int pipe, std::string& text) {
  pollfd ready = {pipe, POLLIN, 0};
  while (true) {
    const int count = poll(&ready, 1, kTrialMilliseconds);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    char bytes[4096];
    const ssize_t length = read(pipe, bytes, sizeof bytes);
    if (length <= 0) return true;
    text.append(bytes, static_cast<size_t>(length));
  }
}

}  // namespace

OpenLibrary::OpenLibrary(const std::string& path)
    : m_path(path), m_library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (m_library == nullptr) throw UsageError{path + " does not open: " + Fault(path)};
}

void* OpenLibrary::Function(const char* name) const {
  void* const function = dlsym(m_library, name);
  if (function == nullptr) throw UsageError{m_path + " does not export " + name};
  return function;
}

void TryLibrary(const std::string& path, const std::function<void()>& open) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  const pid_t trial = fork();
  if (trial == 0) LiveAsTrial(open, ends[1]);
  close(ends[1]);
  std::string fault;
  const bool ended = trial > 0 && ReadToEnd(ends[0], fault);
  close(ends[0]);
  int status = 0;
  if (trial > 0) {
    if (!ended) kill(trial, SIGKILL);
    waitpid(trial, &status, 0);
  }
  if (trial < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (!ended) throw UsageError{path + " does not open: it takes longer than 10 s"};
  if (!fault.empty()) throw UsageError{fault};
  if (WIFSIGNALED(status)) {
    throw UsageError{path + " does not open: opening it crashed by signal " +
                     std::to_string(WTERMSIG(status)) + " (" + strsignal(WTERMSIG(status)) + ")"};
  }
  if (status != 0) throw UsageError{path + " does not open: it ended the process"};
}

}  // namespace host
