#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// What a program that was run has left.
struct Finished {
  int exitCode = 0;  // 128 plus the signal when one ended it.
  std::string out;
  std::string err;
};

// A program that runs with these arguments in the current directory.
class Process {
 public:
  explicit Process(const std::vector<std::string>& command);
  pid_t pid() const { return m_pid; }
  Finished Wait();

 private:
  pid_t m_pid;
  int m_out;
  int m_err;
};

// Runs a program to its end.
Finished RunProcess(const std::vector<std::string>& command);
