#include "terminal.h"

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

std::string OnTerminal(const std::vector<std::string>& command) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    execv(arguments[0], arguments.data());
    _exit(126);
  }
  std::string shown;
  char bytes[4096];
  for (ssize_t count = 0; (count = read(terminal, bytes, sizeof bytes)) > 0;) {
    shown.append(bytes, static_cast<size_t>(count));
  }
  close(terminal);
  waitpid(child, nullptr, 0);
  return shown;
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
