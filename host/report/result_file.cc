#include "report/result_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "files/regular_file.h"
#include "files/whole_file.h"
#include "process/outlet.h"

namespace host {

namespace {

std::string Problem(const std::string& path) {
  return "cannot write " + path + ": " + strerror(errno);
}

// Whether a file is what one of the standard streams leads to.
bool IsStream(int stream, const struct stat& file) {
  struct stat status;
  return fstat(stream, &status) == 0 && status.st_dev == file.st_dev &&
         status.st_ino == file.st_ino;
}

// Whether what is written there comes out in one place, in its order, unlike for /dev/null.
bool KeepsOrder(const std::string& path, const struct stat& file) {
  if (!S_ISCHR(file.st_mode)) return true;
  const int device = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  const bool terminal = isatty(device) != 0;
  if (device >= 0) close(device);
  return terminal;
}

// Returns a new descriptor of standard output and redirects all other printing to stderr. -1 and
// errno when standard output is not open for writing (main replaces a closed one).
int TakeStandardOutput() {
  const int mode = fcntl(STDOUT_FILENO, F_GETFL);
  if (mode >= 0 && (mode & O_ACCMODE) == O_RDONLY) {
    errno = EBADF;
    return -1;
  }
  const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (output >= 0) dup2(STDERR_FILENO, STDOUT_FILENO);
  return output;
}

// Whether a file is absent, empty or a report, whatever has formatted that.
bool HoldsNothingElse(const std::string& path) {
  constexpr size_t kMaxBytes = 1 << 20;
  const int file = OpenRegularDescriptor(path);
  if (file < 0) return errno == ENOENT;
  std::string text(kMaxBytes, '\0');
  const ssize_t count = read(file, text.data(), text.size());
  close(file);
  if (count <= 0) return count == 0;
  text.resize(static_cast<size_t>(count));
  const size_t start = text.find_first_not_of(" \t\r\n");
  if (start == std::string::npos || text[start] != '{') return false;
  const auto has = [&](const char* key) { return text.find(key) != std::string::npos; };
  return has("\"schema_version\"") && has("\"verdict\"") && has("\"exit_code\"");
}

// Opens a device or a pipe for writing, a named pipe as soon as it has a reader. -1 and errno on
// failure, or when there is none until Now() is `until`.
int OpenStream(const std::string& path, bool namedPipe, double until) {
  while (true) {
    const int file = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    const bool noReader = file < 0 && errno == ENXIO && namedPipe;
    if (!noReader || Now() >= until) return file;
    usleep(10000);
  }
}

}  // namespace

ResultFile::ResultFile(const std::string& path, double until) : m_path(path) {
  struct stat status;
  const bool exists = stat(path.c_str(), &status) == 0;
  const bool shared = exists && KeepsOrder(path, status);
  if (path == "-" || (shared && IsStream(STDOUT_FILENO, status))) {
    m_descriptor = TakeStandardOutput();
    if (m_descriptor < 0) throw UsageError{Problem("standard output")};
    return;
  }
  if (shared && IsStream(STDERR_FILENO, status)) {
    throw UsageError{"the report and standard error are one file: " + path};
  }
  if (exists && !S_ISREG(status.st_mode)) {
    const bool namedPipe = S_ISFIFO(status.st_mode);
    m_descriptor = OpenStream(path, namedPipe, until);
    if (m_descriptor >= 0) return;
    const bool noReader = namedPipe && errno == ENXIO;
    throw UsageError{noReader ? "cannot write " + path + ": nobody reads it" : Problem(path)};
  }
  const mode_t mask = umask(0);
  umask(mask);
  m_mode = exists ? status.st_mode & 0777U : 0666U & ~mask;
  m_target = FollowLinks(path);
  if (m_target.empty() || !CanWrite()) throw UsageError{Problem(path)};
}

ResultFile::~ResultFile() {
  if (m_descriptor >= 0) close(m_descriptor);
}

bool ResultFile::CanWrite() {
  if (CanReplace(m_target)) return true;
  const int error = errno;
  m_inPlace = CanOverwrite(m_target);
  errno = error;
  return m_inPlace;
}

bool ResultFile::WriteWhole(const std::string& text) const {
  if (!m_inPlace && ReplaceFile(m_target, m_mode, text)) return true;
  const int error = errno;
  if (!m_inPlace && !HoldsNothingElse(m_target)) {
    errno = error;
    return false;
  }
  // An earlier report makes room for this one, and is gone where that does not fit.
  if (OverwriteFile(m_target, text)) return true;
  const int reason = errno;
  DiscardFile(m_target);
  errno = reason;
  return false;
}

void ResultFile::ReplaceEarlier(const std::function<std::string()>& text) {
  if (m_target.empty() || access(m_target.c_str(), F_OK) != 0) return;
  if (HoldsNothingElse(m_target)) Replace(text());
}

void ResultFile::Replace(const std::string& text) {
  if (!m_target.empty() && !WriteWhole(text)) throw UsageError{Problem(m_path)};
}

int ResultFile::Write(const std::string& text, Limits& limits) {
  const bool written =
      m_target.empty() ? WriteWithin(limits, m_descriptor, text) : WriteWhole(text);
  if (written) return exit_code::kPass;
  if (errno != EPIPE) {
    const std::string problem =
        errno == EAGAIN ? "cannot write " + m_path + ": not read in time" : Problem(m_path);
    fprintf(stderr, "audio_bench: %s\n", Printable(problem).c_str());
  }
  return exit_code::kUsage;
}

void ResultFile::WriteRefusal(const std::string& text, Limits& limits) {
  if (m_target.empty() || HoldsNothingElse(m_target)) Write(text, limits);
}

}  // namespace host
