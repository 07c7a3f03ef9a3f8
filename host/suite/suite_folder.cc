#include "suite/suite_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "base/usage_error.h"
#include "process/limits.h"

namespace host {

namespace {

namespace fs = std::filesystem;

const std::string kResults = "bench_results";
const std::string kLatest = kResults + "/latest";
// What a suite that was killed has left running ends by itself in this time.
constexpr double kLockSeconds = 10;

// "20260301T120000Z"
std::string Time() {
  const time_t now = time(nullptr);
  tm parts;
  char text[32];
  return std::string(text, strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", gmtime_r(&now, &parts)));
}

[[noreturn]] void Refuse(const std::string& path, const std::error_code& error) {
  throw UsageError{"cannot make the folder " + path + ": " + error.message()};
}

// Makes a folder that was not there.
void MakeNew(const std::string& path) {
  std::error_code error;
  const fs::path above = fs::path(path).parent_path();
  if (!above.empty()) fs::create_directories(above, error);
  if (!error && fs::create_directory(path, error)) return;
  if (error) Refuse(path, error);
  throw UsageError{path + " is there already; --resume goes on with it"};
}

// A new folder called after the time, with a number when another suite has just taken that name.
std::string MakeTimed() {
  std::error_code error;
  fs::create_directories(kResults, error);
  if (error) Refuse(kResults, error);
  const std::string time = kResults + "/" + Time();
  std::string path = time;
  for (int number = 2; !fs::create_directory(path, error); ++number) {
    if (error) Refuse(path, error);
    path = time + "-" + std::to_string(number);
  }
  return path;
}

// Lets the link "latest" point to the folder, where nothing but a link has that name.
void PointTo(const std::string& path) {
  std::error_code error;
  if (fs::exists(fs::symlink_status(kLatest, error)) && !fs::is_symlink(kLatest, error)) return;
  const std::string link = kLatest + "." + std::to_string(getpid());
  fs::create_symlink(fs::path(path).filename(), link, error);
  if (!error) fs::rename(link, kLatest, error);
  if (error) fs::remove(link, error);
}

// Opens a file of the folder and locks it for this process, not for those that it starts.
int Mark(const std::string& folder) {
  const std::string path = folder + "/.lock";
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
  if (file < 0) throw UsageError{"cannot write " + path + ": " + strerror(errno)};
  struct flock lock = {};
  lock.l_type = F_WRLCK;
  if (fcntl(file, F_SETLK, &lock) == 0 || (errno != EACCES && errno != EAGAIN)) return file;
  fcntl(file, F_GETLK, &lock);
  close(file);
  throw UsageError{"the folder " + folder + " is in use by another suite, process " +
                   std::to_string(lock.l_pid)};
}

// Waits for the end of the cases of a suite that was killed.
std::unique_ptr<WorkspaceLock> Lock(const std::string& path) {
  const double end = Now() + kLockSeconds;
  const auto wait = [&] {
    if (Now() > end) throw UsageError{"a case of an earlier suite still runs in " + path};
    usleep(20000);
  };
  return std::make_unique<WorkspaceLock>(path, wait);
}

}  // namespace

SuiteFolder::SuiteFolder(const std::string& out, bool resume) : m_path(out) {
  std::error_code error;
  if (out.empty() && resume) {
    const fs::path latest = fs::read_symlink(kLatest, error);
    if (error) throw UsageError{"there is no suite to resume: " + kLatest + ": " + error.message()};
    m_path = kResults + "/" + latest.string();
  }
  if (m_path.empty()) {
    m_path = MakeTimed();
    PointTo(m_path);
  } else if (resume && fs::is_directory(m_path, error)) {
    m_resumed = fs::exists(m_path + "/plan.jsonl", error);
    // A suite that was killed at its very beginning leaves no plan.
    if (!m_resumed && !fs::exists(m_path + "/.lock", error) && !fs::is_empty(m_path, error)) {
      throw UsageError{m_path + " holds no results of a suite"};
    }
  } else {
    MakeNew(m_path);
  }
  m_mark = Mark(m_path);
  try {
    m_lock = Lock(m_path);
  } catch (...) {
    close(m_mark);
    throw;
  }
}

SuiteFolder::~SuiteFolder() { close(m_mark); }

}  // namespace host
