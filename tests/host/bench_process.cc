#include "bench_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace {

// A file without a name, for what the program prints.
int OpenNameless() {
  std::string name = std::filesystem::temp_directory_path() / "output_XXXXXX";
  const int file = mkstemp(name.data());
  unlink(name.c_str());
  return file;
}

std::string TakeAll(int file) {
  std::string text;
  char bytes[4096];
  lseek(file, 0, SEEK_SET);
  for (ssize_t count = 0; (count = read(file, bytes, sizeof bytes)) > 0;) {
    text.append(bytes, static_cast<size_t>(count));
  }
  close(file);
  return text;
}

}  // namespace

Process::Process(const std::vector<std::string>& command)
    : m_out(OpenNameless()), m_err(OpenNameless()) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  m_pid = fork();
  if (m_pid != 0) return;
  dup2(m_out, STDOUT_FILENO);
  dup2(m_err, STDERR_FILENO);
  execv(arguments[0], arguments.data());
  _exit(126);
}

Finished Process::Wait() {
  int status = 0;
  waitpid(m_pid, &status, 0);
  const int code = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return {.exitCode = code, .out = TakeAll(m_out), .err = TakeAll(m_err)};
}

Finished RunProcess(const std::vector<std::string>& command) { return Process(command).Wait(); }
