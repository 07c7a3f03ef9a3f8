#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

#include "process/limits.h"

namespace host {

// Where a report goes. A regular file appears whole or not at all, through the links that lead to
// it; where its folder or its disk takes no new file it is written in place, and an earlier report
// is taken away when that fails too. A device or a pipe is written to. "-", or what standard output
// leads to, takes standard output for the report alone: from then on what this process prints there
// goes to stderr.
class ResultFile {
 public:
  // Makes sure that the report can be written. Throws UsageError when not, or when it would be
  // mixed with the log. Waits for the reader of a named pipe until Now() is `until`.
  ResultFile(const std::string& path, double until);
  ~ResultFile();
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  // Replaces an earlier report in a regular file by what `text` returns, and nothing else. Throws
  // UsageError when that fails; the earlier report is gone all the same.
  void ReplaceEarlier(const std::function<std::string()>& text);

  // Replaces a regular file, so that no earlier report is left there; leaves the others as they
  // are. Throws UsageError when that fails.
  void Replace(const std::string& text);

  // Writes the report; a reader has as long as the limits allow to take it. Returns kPass, or
  // kUsage when that fails, which is told on stderr; silent on a closed pipe.
  int Write(const std::string& text, Limits& limits);

  // Writes the report of a run that was refused, but never over a file that is no report: the path
  // may be what was wrong.
  void WriteRefusal(const std::string& text, Limits& limits);

 private:
  bool CanWrite();
  bool WriteWhole(const std::string& text) const;

  std::string m_path;      // As it was given.
  std::string m_target;    // The regular file to replace; empty when m_descriptor is written to.
  mode_t m_mode = 0;       // Of that file.
  bool m_inPlace = false;  // Its folder takes no new file.
  int m_descriptor = -1;   // A device, a pipe or what was standard output.
};

}  // namespace host
