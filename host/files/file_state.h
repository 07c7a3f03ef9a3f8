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
  explicit FileState(const struct stat& status) : m_status(status) {}

  // Waits for a clock tick, so that a change from now on changes the time stamp.
  void WaitForClockTick() const;

  // Whether a change at this time by the clock of files may get the date of the last one.
  bool MayBeDatedAlikeAt(const timespec& now) const;

  // The same file, with content that nobody has written to in between; or none both times.
  bool SameContent(const FileState& later) const;

  // Whether its file system seems to date files by whole seconds.
  bool HasWholeSeconds() const;

  // As SameContent, and neither was the file written and dated back, nor its rights changed.
  bool Untouched(const FileState& later) const;

  const std::optional<struct stat>& status() const { return m_status; }

 private:
  std::optional<struct stat> m_status;
};

}  // namespace host
