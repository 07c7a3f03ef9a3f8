#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

namespace host {

// What tells of a file, without reading it, whether its content is the same as before.
class FileState {
 public:
  explicit FileState(const std::string& path);
  explicit FileState(int descriptor);

  // Waits for a clock tick, so that a change from now on changes the time stamp.
  void WaitForClockTick() const;

  // Whether a change at this time by the clock of files may get the date of the last one.
  bool MayBeDatedAlikeAt(const timespec& now) const;

  // The same file, with content that nobody has written to in between; or none both times.
  bool SameContent(const FileState& later) const;

  // As SameContent, and the file was not given the same content or another name either.
  bool Untouched(const FileState& later) const;

  const std::optional<struct stat>& status() const { return m_status; }

 private:
  std::optional<struct stat> m_status;
};

}  // namespace host
