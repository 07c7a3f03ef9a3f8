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

  // Returns whether a change at this time by the clock of files may get the date of the last one.
  bool MayBeDatedAlikeAt(const timespec& now) const;

  // Returns whether it is the same file and nobody has written to it in between, or there was none
  // both times.
  bool SameContent(const FileState& later) const;

  // Returns whether the file system seems to date files by whole seconds.
  bool HasWholeSeconds() const;

  // Returns whether, besides SameContent, the file was neither written and dated back nor its
  // rights changed.
  bool Untouched(const FileState& later) const;

  const std::optional<struct stat>& status() const { return m_status; }

 private:
  std::optional<struct stat> m_status;
};

}  // namespace host
