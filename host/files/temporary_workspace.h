#pragma once

#include <string>

namespace host {

// A workspace for one run, in the folder for temporary files.
class TemporaryWorkspace {
 public:
  // Throws UsageError when there is no room for it.
  TemporaryWorkspace();

  // Removes it with all that is in it, unless it is to be kept.
  ~TemporaryWorkspace();
  TemporaryWorkspace(const TemporaryWorkspace&) = delete;
  TemporaryWorkspace& operator=(const TemporaryWorkspace&) = delete;

  const std::string& path() const { return m_path; }
  void Keep() { m_kept = true; }

 private:
  std::string m_path;
  bool m_kept = false;
};

}  // namespace host
