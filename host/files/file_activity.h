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
  int error = 0;  // errno

  // As much of the name as fits.
  char name[252] = {};
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

// How far a file has been read: to the farthest place at which it was closed, or as many bytes as
// were taken from it, where that is more.
struct FilePosition {
  char place[160] = {};
  uint64_t bytes = 0;
};

struct FileActivity {
  static constexpr size_t kMaxOpenFaults = 64;

  // How many files were opened so far, and how many different names have been closed.
  std::atomic<uint64_t> opened = 0;
  std::atomic<uint64_t> done = 0;

  // The first file that could not be written whole, and the first one that could not be read.
  FirstFault writeFault;
  FirstFault readFault;

  // The files that could not be opened, by their place in the workspace, and how many they are,
  // which may be more than there is room for.
  FileFault openFaults[kMaxOpenFaults];
  std::atomic<size_t> openFaultCount = 0;

  // The files that were read from, by their place in the workspace. Those for which there is no
  // room, or whose names are too long, are left out.
  static constexpr size_t kMaxReads = 2048;
  FilePosition reads[kMaxReads];
  std::atomic<size_t> readCount = 0;

  // Notes it for the first time.
  FilePosition* NoteRead(std::string_view place, uint64_t bytes);

  void NoteOpenFault(std::string_view place, int error);
};

}  // namespace host
