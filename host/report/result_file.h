#pragma once

#include <string>

namespace host {

// A file for results that appears whole or not at all: it is written beside its place and then
// moved there. Something that is no regular file (a device, a pipe) is written as it is.
class ResultFile {
 public:
  // Makes sure that the file can be written; throws UsageError when not.
  explicit ResultFile(const std::string& path);
  ~ResultFile();  // What was not written leaves no trace.
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  // Writes the file, once. The exit code: kPass, or kUsage when that fails, which is told on
  // stderr.
  int Write(const std::string& text);

 private:
  std::string m_path;
  std::string m_temporary;  // Empty when m_path is written as it is.
  int m_descriptor;
};

}  // namespace host
