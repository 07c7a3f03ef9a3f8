#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "cli/cli.h"

namespace {

// A standard stream that the caller has closed would lend its number to the next file opened, which
// would then get what is meant for the stream. Opened for reading only, so that writing fails.
void OccupyStandardStreams() {
  int descriptor;
  do {
    descriptor = open("/dev/null", O_RDONLY);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor >= 0) close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
  OccupyStandardStreams();
  // A reader that has seen enough does not keep the report from its file.
  signal(SIGPIPE, SIG_IGN);
  // A file that grows beyond what the caller allows is a failed write, here and in the routine.
  signal(SIGXFSZ, SIG_IGN);
  return host::RunCommandLine(argc, argv);
}
