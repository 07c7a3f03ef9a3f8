#pragma once

#include <sys/types.h>

#include <string>

namespace host {

// Where a report goes. A regular file appears whole or not at all, through the links that lead to
// it; a device or a pipe is written to. "-", or the file that is standard output, takes standard
// output for the report alone: from then on what this process prints there goes to stderr.
class ResultFile {
 public:
  // Makes sure that the report can be written. Throws UsageError when not. Waits for a reader of a
  // named pipe.
  explicit ResultFile(const std::string& path);
  ~ResultFile();
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  // Replaces a regular file, so that no earlier report is left there; leaves the others as they
  // are. Throws UsageError when that fails.
  void Replace(const std::string& text);

  // Writes the report. Returns kPass, or kUsage when that fails, which is told on stderr; silent on
  // a closed pipe.
  int Write(const std::string& text);

  // Writes the report of a run that was refused, but never over a file that is no report: the path
  // may be what was wrong.
  void WriteRefusal(const std::string& text);

 private:
  bool WriteWhole(const std::string& text) const;

  std::string m_path;     // As it was given.
  std::string m_target;   // The regular file to replace; empty when m_descriptor is written to.
  mode_t m_mode = 0;      // Of that file.
  int m_descriptor = -1;  // A device, a pipe or what was standard output.
};

}  // namespace host
