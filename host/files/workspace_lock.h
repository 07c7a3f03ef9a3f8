#pragma once

#include <functional>
#include <string>

namespace host {

// Keeps a workspace for one run at a time, for as long as this object, or a process that was forked
// from this one, lives. Nothing is written to the workspace for it.
class WorkspaceLock {
 public:
  // While somebody else holds the lock, calls `wait`, which lets some time go by, or throws to give
  // up; where there is no such function, throws UsageError that says who holds it. A file system
  // that knows no locks is used without one.
  WorkspaceLock(const std::string& workspace, const std::function<void()>& wait);
  ~WorkspaceLock();
  WorkspaceLock(const WorkspaceLock&) = delete;
  WorkspaceLock& operator=(const WorkspaceLock&) = delete;

 private:
  explicit WorkspaceLock(int folder) : m_folder(folder) {}

  int m_folder;
};

}  // namespace host
