#include "report/result_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "files/regular_file.h"
#include "process/outlet.h"

namespace host {

namespace {

namespace fs = std::filesystem;

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

// The place of an open file. Empty, and errno set, when it has none any more.
std::string PlaceOf(int file) {
  std::error_code error;
  const fs::path place = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
  struct stat there;
  struct stat opened;
  errno = ENOENT;
  if (error || lstat(place.c_str(), &there) != 0 || fstat(file, &opened) != 0) return "";
  errno = ENOENT;
  return there.st_dev == opened.st_dev && there.st_ino == opened.st_ino ? place.string() : "";
}

// The file that a path names after all symbolic links, whether it exists or not. Only the kernel
// follows them, as it does for those who write there: where everybody may put links, it follows
// nobody else's. Empty, and errno set, when it does not.
std::string FollowLinks(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  constexpr int kFlags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  int file = open(path.c_str(), kFlags);
  const bool leadsNowhere = file < 0 && errno == ENOENT;
  if (leadsNowhere) file = open(path.c_str(), kFlags | O_CREAT, 0666);
  if (file < 0) return "";
  std::string place = PlaceOf(file);
  const int error = errno;
  if (leadsNowhere) unlink(place.c_str());
  close(file);
  errno = error;
  return place;
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

// Blocks all signals (but SIGKILL, which nothing can block) while it exists.
class HoldSignals {
 public:
  HoldSignals() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, &m_before);
  }
  ~HoldSignals() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }
  HoldSignals(const HoldSignals&) = delete;
  HoldSignals& operator=(const HoldSignals&) = delete;

 private:
  sigset_t m_before;
};

std::string FolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

// Opens a new file in the folder of `path`: without a name, so that it vanishes with the process
// even on SIGKILL, or, on file systems that do not support that, with a name that is put in `name`.
// Returns -1 and sets errno on failure.
int OpenBeside(const std::string& path, std::string& name) {
  const int nameless = open(FolderOf(path).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  if (nameless >= 0) return nameless;
  name = path + ".XXXXXX";
  return mkostemp(name.data(), O_CLOEXEC);
}

// Gives the nameless file of a descriptor the name `path`, replacing what is there.
bool Publish(int descriptor, const std::string& path) {
  const std::string source = "/proc/self/fd/" + std::to_string(descriptor);
  const auto link = [&source](const std::string& name) {
    return linkat(AT_FDCWD, source.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
  };
  if (link(path)) return true;
  if (errno != EEXIST) return false;
  // Linking does not replace a file, renaming does; the second name exists between these two calls.
  const std::string other = path + "." + std::to_string(getpid());
  unlink(other.c_str());
  if (!link(other)) return false;
  if (rename(other.c_str(), path.c_str()) == 0) return true;
  const int error = errno;
  unlink(other.c_str());
  errno = error;
  return false;
}

// Atomically replaces the file at `path`, or creates it. Returns false and sets errno on failure.
bool ReplaceFile(const std::string& path, mode_t mode, const std::string& text) {
  const HoldSignals hold;
  std::string name;
  const int file = OpenBeside(path, name);
  if (file < 0) return false;
  bool written = WriteAll(file, text) && fchmod(file, mode) == 0;
  if (name.empty()) {
    written = written && Publish(file, path);
  } else {
    written = written && rename(name.c_str(), path.c_str()) == 0;
  }
  const int error = errno;
  close(file);
  if (!written && !name.empty()) unlink(name.c_str());
  errno = error;
  return written;
}

// Returns whether the file can be replaced; sets errno when not. Changes nothing.
bool CanReplace(const std::string& path) {
  if (access(path.c_str(), W_OK) != 0 && errno != ENOENT) return false;
  std::string name;
  const int file = OpenBeside(path, name);
  if (file < 0) return false;
  close(file);
  if (!name.empty()) unlink(name.c_str());
  return true;
}

// Writes over the file at `path`, or creates it: for a folder or a disk that takes no new file.
// Returns false and sets errno on failure.
bool OverwriteFile(const std::string& path, const std::string& text) {
  const HoldSignals hold;
  const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
  const int file = open(path.c_str(), flags, 0666);
  if (file < 0) return false;
  const bool written = WriteAll(file, text);
  const int error = errno;
  close(file);
  errno = error;
  return written;
}

// Takes the content of the file at `path` away, and the file where its folder lets it go.
void DiscardFile(const std::string& path) {
  if (truncate(path.c_str(), 0) != 0 && errno == ENOENT) return;
  unlink(path.c_str());
}

// Whether a file is absent, empty or a report, whatever has formatted that.
bool HoldsNothingElse(const std::string& path) {
  constexpr size_t kMostBytes = 1 << 20;
  const int file = OpenRegularDescriptor(path);
  if (file < 0) return errno == ENOENT;
  std::string text(kMostBytes, '\0');
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
  m_inPlace = access(m_target.c_str(), W_OK) == 0;
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

void ResultFile::ReplaceEarlier(const std::string& text) {
  if (m_target.empty() || !HoldsNothingElse(m_target)) return;
  if (access(m_target.c_str(), F_OK) == 0) Replace(text);
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
