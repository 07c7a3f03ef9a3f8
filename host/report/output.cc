#include "report/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/exit_code.h"

namespace host {

int PrintResults(const std::string& text) {
  const bool written =
      fwrite(text.data(), 1, text.size(), stdout) == text.size() && fflush(stdout) == 0;
  if (written) return exit_code::kPass;
  if (errno != EPIPE) {
    fprintf(stderr, "audio_bench: cannot write to standard output: %s\n", strerror(errno));
  }
  return exit_code::kUsage;
}

}  // namespace host
