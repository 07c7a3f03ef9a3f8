#include "suite/scratch.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/usage_error.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr const char* kStart = "audio_bench_suite.";
constexpr int kTries = 100;

// Opens a folder and locks it. Returns -1 when that does not work, or when it is no longer there.
int Lock(const std::string& path) {
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (folder < 0) return -1;
  struct stat opened;
  struct stat named;
  if (flock(folder, LOCK_EX | LOCK_NB) == 0 && fstat(folder, &opened) == 0 &&
      lstat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino) {
    return folder;
  }
  close(folder);
  return -1;
}

void RemoveLeftovers(const std::string& folder) {
  std::error_code error;
  for (fs::directory_iterator each(folder, error), end; !error && each != end;
       each.increment(error)) {
    if (!each->path().filename().string().starts_with(kStart)) continue;
    const int lock = Lock(each->path());
    if (lock < 0) continue;  // Somebody works in it, or it is somebody else's.
    std::error_code ignored;
    fs::remove_all(each->path(), ignored);
    close(lock);
  }
}

}  // namespace

Scratch::Scratch(const std::string& folder) : m_lock(-1), m_owner(getpid()) {
  std::error_code error;
  const fs::path whole = fs::canonical(folder, error);
  if (error) throw UsageError{"the scratch folder " + folder + ": " + error.message()};
  if (!fs::is_directory(whole, error)) {
    throw UsageError{"the scratch folder " + folder + " is no folder"};
  }
  RemoveLeftovers(whole);
  // Another suite may take a folder that is not yet locked for one that was left.
  for (int i = 0; m_lock < 0 && i < kTries; ++i) {
    m_path = (whole / kStart).string() + "XXXXXX";
    if (mkdtemp(m_path.data()) == nullptr) break;
    m_lock = Lock(m_path);
    if (m_lock < 0) rmdir(m_path.c_str());
  }
  if (m_lock >= 0) return;
  throw UsageError{"cannot work in the scratch folder " + folder + ": " + strerror(errno)};
}

Scratch::~Scratch() {
  std::error_code ignored;
  if (getpid() == m_owner) fs::remove_all(m_path, ignored);
  close(m_lock);
}

}  // namespace host
