#pragma once

#include <string>

namespace host {

// Keeps a workspace for one run at a time, for as long as this object, or a process that was forked
// from this one, lives. Nothing is written to the workspace for it.
class WorkspaceLock {
 public:
  // When somebody else holds the lock: waits for it if asked to, else throws UsageError that says
  // who it is. A file system that knows no locks is used without one.
  WorkspaceLock(const std::string& workspace, bool wait);
  ~WorkspaceLock();
  WorkspaceLock(const WorkspaceLock&) = delete;
  WorkspaceLock& operator=(const WorkspaceLock&) = delete;

 private:
  int m_folder;
};

}  // namespace host
