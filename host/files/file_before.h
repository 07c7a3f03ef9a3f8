#pragma once

#include <cstdint>
#include <string>

#include "files/file_state.h"

namespace host {

// What a file was before a run.
class FileBefore {
 public:
  // Reads the file, see Fingerprint. Of one that is not read whole it waits for its dates to tell.
  explicit FileBefore(const std::string& path);

  // Waits until the clock of the file system has gone on, so that whatever is written from now on
  // gets another date: the same bytes, written again, are then told from those that were left.
  void WaitUntilDatesTell();

  // Returns whether there was a file.
  bool WasThere() const { return m_state.status().has_value(); }

  // Returns 0 when there was none.
  uint64_t Bytes() const;

  // Returns whether there is the same file with the same content, or none as before. The dates
  // tell, as far as they can; where they cannot, the content does: a change of its rights moves one
  // of them, and whoever overwrites a file may set the other one back.
  bool IsSameNow() const;

 private:
  std::string m_path;
  FileState m_state;
  uint64_t m_fingerprint;
  bool m_datesTell = false;  // A change from now on has another date.
};

}  // namespace host
