#include "files/beneath.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "files/regular_file.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// Lets the kernel open the file in one step; one that cannot gives ENOSYS.
int OpenByKernel(int folder, const std::string& place, int flags, mode_t mode) {
  open_how how = {};
  how.flags = static_cast<unsigned>(flags);
  how.mode = (flags & O_CREAT) != 0 ? mode : 0;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  return static_cast<int>(syscall(SYS_openat2, folder, place.c_str(), &how, sizeof how));
}

// Where `place` really is, relative to the folder; empty when it is not in there.
std::string RealPlace(int folder, const std::string& place) {
  std::error_code error;
  const fs::path root = fs::read_symlink("/proc/self/fd/" + std::to_string(folder), error);
  if (error) return "";
  const fs::path real = fs::weakly_canonical(root / place, error);
  if (error) return "";
  const fs::path relative = real.lexically_relative(root);
  return relative.empty() || *relative.begin() == ".." ? "" : relative.string();
}

// Opens the path part by part and follows no link.
int OpenByWalk(int folder, const std::string& place, int flags, mode_t mode) {
  int at = dup(folder);
  size_t begin = 0;
  for (size_t slash = 0; at >= 0 && (slash = place.find('/', begin)) != std::string::npos;
       begin = slash + 1) {
    const std::string part = place.substr(begin, slash - begin);
    if (part.empty()) continue;
    const int next = openat(at, part.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    const int error = errno;
    close(at);
    errno = error;
    at = next;
  }
  if (at < 0) return -1;
  const std::string last = begin < place.size() ? place.substr(begin) : ".";
  const int opened = openat(at, last.c_str(), flags | O_NOFOLLOW, mode);
  const int error = errno;
  close(at);
  errno = error;
  struct stat status;
  const bool link = opened >= 0 ? fstat(opened, &status) == 0 && S_ISLNK(status.st_mode)
                                : error == ELOOP;  // The link leads nowhere yet.
  if (!link) return opened;
  if (opened >= 0) close(opened);
  errno = EXDEV;
  return -1;
}

// Dates the file anew even if it is empty, as O_TRUNC does. One that was made shorter is written to
// the disk as it is closed on some file systems: an empty one is only dated.
bool MakeEmpty(int file, const struct stat& status) {
  return (status.st_size == 0 ? futimens(file, nullptr) : ftruncate(file, 0)) == 0;
}

}  // namespace

int OpenFolder(const std::string& path) {
  return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int OpenBeneath(int folder, const std::string& place, int flags, mode_t mode) {
  const int opened = OpenByKernel(folder, place, flags, mode);
  // The kernel also refuses a link to an absolute place in the folder.
  if (opened >= 0 || (errno != ENOSYS && errno != EPERM && errno != EXDEV)) return opened;
  // It follows nobody else's link where everybody may put one; nor does what follows here.
  const int allowed = openat(folder, place.c_str(), O_PATH | O_CLOEXEC);
  if (allowed < 0 && errno == EACCES) return -1;
  if (allowed >= 0) close(allowed);
  const std::string real = RealPlace(folder, place);
  if (real.empty()) {
    errno = EXDEV;
    return -1;
  }
  return OpenByWalk(folder, real, flags, mode);
}

int OpenToWriteBeneath(int folder, const std::string& place, int flags, mode_t mode) {
  const int file = OpenBeneath(folder, place, flags & ~O_TRUNC, mode);
  if (file < 0) return -1;
  struct stat status;
  int error = fstat(file, &status) == 0 ? 0 : errno;
  if (error == 0 && S_ISREG(status.st_mode)) {
    if (status.st_nlink > 1) error = EMLINK;
    if (error == 0 && (flags & O_TRUNC) != 0 && !MakeEmpty(file, status)) error = errno;
  }
  if (error == 0) return file;
  close(file);
  errno = error;
  return -1;
}

int CreateParentsBeneath(int folder, const std::string& place) {
  for (size_t slash = place.find('/', 1); slash != std::string::npos;
       slash = place.find('/', slash + 1)) {
    const std::string path = place.substr(0, slash);
    const size_t last = path.rfind('/');
    const std::string above = last == std::string::npos ? "." : path.substr(0, last);
    const int parent = OpenBeneath(folder, above, O_PATH | O_DIRECTORY | O_CLOEXEC, 0);
    if (parent < 0) return -1;
    // What is there already is told by opening it.
    const std::string name = path.substr(last == std::string::npos ? 0 : last + 1);
    const int made = name.empty() ? 0 : mkdirat(parent, name.c_str(), 0777);
    const int error = errno;
    close(parent);
    errno = error;
    if (made != 0 && error != EEXIST) return -1;
  }
  return 0;
}

FILE* WorkFile::Create() const {
  const int root = OpenFolder(folder);
  if (root < 0) return nullptr;
  int file = -1;
  if (CreateParentsBeneath(root, place) == 0) {
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC;
    file = OpenToWriteBeneath(root, place, flags, 0666);
  }
  int error = errno;
  struct stat status;
  if (file >= 0 && (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))) {
    close(file);
    file = -1;
    error = kNotRegular;
  }
  close(root);
  errno = error;
  return file < 0 ? nullptr : fdopen(file, "wb");
}

int WorkFile::Remove() const {
  const int root = OpenFolder(folder);
  if (root < 0) return errno == ENOENT ? 0 : errno;
  const fs::path path(place);
  const std::string above = path.has_parent_path() ? path.parent_path().string() : ".";
  const std::string name = path.filename();
  const int parent = OpenBeneath(root, above, O_PATH | O_DIRECTORY | O_CLOEXEC, 0);
  struct stat status;
  int error = parent < 0 ? errno : 0;
  if (error == 0 && fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) error = errno;
  if (error == 0 && S_ISREG(status.st_mode) && unlinkat(parent, name.c_str(), 0) != 0) {
    error = errno;
  }
  if (parent >= 0) close(parent);
  close(root);
  return error == ENOENT || error == ENOTDIR ? 0 : error;
}

std::string WriteFault(int error) {
  if (error == EXDEV) return "leads out of the workspace by a symbolic link";
  return error == EMLINK ? "has another name, a hard link" : FaultText(error);
}

}  // namespace host
