#include "files/workspace_lock.h"

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/usage_error.h"
#include "files/beneath.h"

namespace host {

namespace {

// The process that holds a lock on this file, from the kernel's list of locks, which has lines like
// "3: FLOCK  ADVISORY  WRITE 4711 08:02:131075 0 EOF"; 0 when it is not to be seen from here.
pid_t Holder(ino_t file) {
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number, kind, mode, access, place;
    pid_t process = 0;
    if (!(words >> number >> kind >> mode >> access >> process >> place)) continue;
    const std::string inode = place.substr(place.rfind(':') + 1);
    if (kind == "FLOCK" && inode == std::to_string(file)) return std::max(process, 0);
  }
  return 0;
}

std::string CommandLine(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/cmdline", std::ios::binary);
  std::string words((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  while (!words.empty() && words.back() == '\0') words.pop_back();
  std::replace(words.begin(), words.end(), '\0', ' ');
  return words;
}

std::string Describe(int folder) {
  struct stat status;
  const pid_t holder = fstat(folder, &status) == 0 ? Holder(status.st_ino) : 0;
  if (holder == 0) return "another process";
  const std::string command = CommandLine(holder);
  return "process " + std::to_string(holder) + (command.empty() ? "" : " (" + command + ")");
}

int OpenWorkspace(const std::string& workspace) {
  const int folder = OpenFolder(workspace);
  if (folder >= 0) return folder;
  throw UsageError{"cannot open the folder " + workspace + ": " + strerror(errno)};
}

}  // namespace

WorkspaceLock::WorkspaceLock(const std::string& workspace, const std::function<void()>& wait)
    : WorkspaceLock(OpenWorkspace(workspace)) {
  while (flock(m_folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    if (!wait) {
      throw UsageError{"the workspace " + workspace + " is in use by " + Describe(m_folder) +
                       "; --wait waits for its end"};
    }
    wait();
  }
}

WorkspaceLock::~WorkspaceLock() { close(m_folder); }

}  // namespace host
