#include "support/child_process.h"

#include <sys/wait.h>
#include <unistd.h>

int RunInChild(const std::function<void()>& body) {
  const pid_t child = fork();
  if (child == 0) {
    body();
    _exit(0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}
