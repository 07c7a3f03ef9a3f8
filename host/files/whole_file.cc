#include "files/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "files/new_file.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr int kWrite = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

// Returns the place of an open file. Returns an empty one and sets errno when it has none any more.
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

int OpenFolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return open(folder.empty() ? "." : folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

// Closes the descriptor of a file and keeps errno.
void Close(int file) {
  const int error = errno;
  close(file);
  errno = error;
}

bool WriteNew(int folder, const std::string& path, mode_t mode, const std::string& text) {
  NewFile file(folder, fs::path(path).filename(), 0600);
  return file.descriptor() >= 0 && WriteAll(file.descriptor(), text.data(), text.size()) &&
         fchmod(file.descriptor(), mode) == 0 && file.Publish(true);
}

// Returns whether an open file has no other name. Sets errno when it has.
bool HasOneName(int file) {
  struct stat status;
  if (fstat(file, &status) != 0) return false;
  errno = EMLINK;
  return status.st_nlink <= 1;
}

}  // namespace

std::string FollowLinks(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  int file = open(path.c_str(), kWrite);
  const bool leadsNowhere = file < 0 && errno == ENOENT;
  if (leadsNowhere) file = open(path.c_str(), kWrite | O_CREAT, 0666);
  if (file < 0) return "";
  std::string place = PlaceOf(file);
  if (leadsNowhere && !place.empty()) unlink(place.c_str());
  Close(file);
  return place;
}

bool ReplaceFile(const std::string& path, mode_t mode, const std::string& text) {
  const HoldSignals hold;
  const int folder = OpenFolderOf(path);
  if (folder < 0) return false;
  const bool written = WriteNew(folder, path, mode, text);
  Close(folder);
  return written;
}

bool CanReplace(const std::string& path) {
  if (access(path.c_str(), W_OK) != 0 && errno != ENOENT) return false;
  const int folder = OpenFolderOf(path);
  if (folder < 0) return false;
  const bool taken = NewFile(folder, fs::path(path).filename(), 0600).descriptor() >= 0;
  Close(folder);
  return taken;
}

bool CanOverwrite(const std::string& path) {
  const int file = open(path.c_str(), kWrite | O_NOFOLLOW);
  if (file < 0) return false;
  const bool good = HasOneName(file);
  Close(file);
  return good;
}

bool OverwriteFile(const std::string& path, const std::string& text) {
  const HoldSignals hold;
  const int file = open(path.c_str(), kWrite | O_NOFOLLOW | O_CREAT, 0666);
  if (file < 0) return false;
  const bool written =
      HasOneName(file) && ftruncate(file, 0) == 0 && WriteAll(file, text.data(), text.size());
  Close(file);
  return written;
}

void DiscardFile(const std::string& path) {
  const int file = open(path.c_str(), kWrite | O_NOFOLLOW);
  if (file >= 0) {
    // Where the folder keeps the file, it is at least made empty.
    if (HasOneName(file) && ftruncate(file, 0) != 0) errno = EIO;
    close(file);
  }
  unlink(path.c_str());
}

}  // namespace host
