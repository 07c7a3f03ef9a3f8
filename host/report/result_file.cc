#include "report/result_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/exit_code.h"
#include "base/usage_error.h"

namespace host {

namespace {

std::string Problem(const std::string& path) {
  return "cannot write " + path + ": " + strerror(errno);
}

bool WriteAll(int descriptor, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) done += static_cast<size_t>(count);
  }
  return true;
}

}  // namespace

ResultFile::ResultFile(const std::string& path) : m_path(path) {
  struct stat status;
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    m_descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    m_temporary = path + ".XXXXXX";
    m_descriptor = mkostemp(m_temporary.data(), O_CLOEXEC);
  }
  if (m_descriptor < 0) throw UsageError{Problem(path)};
}

ResultFile::~ResultFile() {
  if (m_descriptor >= 0) close(m_descriptor);
  if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

int ResultFile::Write(const std::string& text) {
  bool written = WriteAll(m_descriptor, text);
  if (written && !m_temporary.empty()) {
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(m_descriptor, 0666 & ~mask);  // As any file, not as a temporary one.
    written = rename(m_temporary.c_str(), m_path.c_str()) == 0;
    if (written) m_temporary.clear();
  }
  if (written) return exit_code::kPass;
  fprintf(stderr, "audio_bench: %s\n", Problem(m_path).c_str());
  return exit_code::kUsage;
}

}  // namespace host
