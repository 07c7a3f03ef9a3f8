#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

// What a process does with its files, in memory that another one may watch. The names are complete
// once the process has ended.

// Something that went wrong with a file.
struct FileFault {
  int error = 0;        // errno
  char name[252] = {};  // As much of it as fits.
  void Set(std::string_view fileName, int fault);
};

// The first fault of a kind.
class FirstFault {
 public:
  void Note(std::string_view name, int error);
  const FileFault* Get() const { return m_known ? &m_fault : nullptr; }

 private:
  std::atomic<bool> m_taken = false;
  std::atomic<bool> m_known = false;
  FileFault m_fault;
};

struct FileActivity {
  static constexpr size_t kMaxOpenFaults = 64;

  std::atomic<uint64_t> opened = 0;  // Files opened so far.
  std::atomic<uint64_t> done = 0;    // Different names of files that have been closed.
  FirstFault writeFault;             // A file that could not be written whole.
  FirstFault readFault;              // A file that could not be read.
  // Files that could not be opened, by their place in the workspace.
  FileFault openFaults[kMaxOpenFaults];
  std::atomic<size_t> openFaultCount = 0;  // May be more than there is room for.

  void NoteOpenFault(std::string_view place, int error);
};

}  // namespace host
