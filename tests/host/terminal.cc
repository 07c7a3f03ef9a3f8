#include "terminal.h"

#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Tells `heard` each time of all that was shown so far.
std::string Watch(const std::function<void()>& work,
                  const std::function<void(pid_t child, const std::string& shown)>& heard) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    work();
    _exit(126);
  }
  std::string shown;
  char bytes[4096];
  for (ssize_t count = 0; (count = read(terminal, bytes, sizeof bytes)) > 0;) {
    shown.append(bytes, static_cast<size_t>(count));
    heard(child, shown);
  }
  close(terminal);
  waitpid(child, nullptr, 0);
  return shown;
}

void Execute(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execv(arguments[0], arguments.data());
}

}  // namespace

std::string OnTerminal(const std::vector<std::string>& command) {
  return OnTerminal([&command] { Execute(command); });
}

std::string OnTerminal(const std::function<void()>& work) {
  return Watch(work, [](pid_t, const std::string&) {});
}

std::string OnTerminalUntil(std::string_view text, int signal,
                            const std::vector<std::string>& command) {
  bool told = false;
  return Watch([&command] { Execute(command); },
               [&](pid_t child, const std::string& shown) {
                 if (told || shown.find(text) == std::string::npos) return;
                 told = true;
                 kill(child, signal);
               });
}

void TerminalTest::SetUp() {
  int terminal = -1;
  int other = -1;
  if (openpty(&terminal, &other, nullptr, nullptr, nullptr) != 0) {
    GTEST_SKIP() << "this machine has no pseudo-terminals (/dev/pts)";
  }
  close(terminal);
  close(other);
}
