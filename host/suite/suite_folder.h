#pragma once

#include <memory>
#include <string>

#include "files/workspace_lock.h"

namespace host {

// The folder of a suite's results, which is this suite's alone while the object lives.
class SuiteFolder {
 public:
  // Makes it. `out` is empty for one that is called after the time, to which "latest" then points.
  // One that there is already is taken with `resume` only; without a name that is the latest one.
  // Throws UsageError when it cannot be had.
  SuiteFolder(const std::string& out, bool resume);
  ~SuiteFolder();
  SuiteFolder(const SuiteFolder&) = delete;
  SuiteFolder& operator=(const SuiteFolder&) = delete;

  const std::string& path() const { return m_path; }

  // Whether it holds an earlier suite, to be gone on with.
  bool resumed() const { return m_resumed; }

 private:
  std::string m_path;
  bool m_resumed = false;
  int m_mark = -1;                        // Locked by this process alone.
  std::unique_ptr<WorkspaceLock> m_lock;  // Held by its cases as well.
};

}  // namespace host
