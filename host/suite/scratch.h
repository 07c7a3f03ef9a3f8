#pragma once

#include <sys/types.h>

#include <string>

namespace host {

// A folder on a disk of this machine in which the cases of a suite run, while their results go
// elsewhere.
class Scratch {
 public:
  // Makes a folder of its own in `folder`, after removing those that suites have left there which
  // were killed. Throws UsageError when it cannot be made.
  explicit Scratch(const std::string& folder);

  // Removes it with all that is in it.
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
  int m_lock;  // Held for as long as this object, or a process of a case, lives.
  pid_t m_owner;
};

// Where in the folder of the results those of a case come together before they get their name.
std::string IncomingFolder(const std::string& results);

// Brings what a case has left home: its workspace in the scratch folder becomes the one in the
// folder of the results, whole or not at all; its report and the lines that it has printed, which
// are there, get the paths that they would have had without the scratch folder. Throws
// UsageError when the scratch folder is full, or when that does not work.
struct Homecoming {
  std::string scratch;  // Folder of a Scratch.
  std::string results;
  std::string id;

  void Bring() const;
};

}  // namespace host
