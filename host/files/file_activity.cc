#include "files/file_activity.h"

#include <algorithm>

namespace host {

void FileFault::Set(std::string_view fileName, int fault) {
  error = fault;
  const size_t length = std::min(fileName.size(), sizeof name - 1);
  *std::copy_n(fileName.begin(), length, name) = '\0';
}

void FirstFault::Note(std::string_view name, int error) {
  if (m_taken.exchange(true)) return;
  m_fault.Set(name, error);
  m_known = true;
}

FilePosition* FileActivity::NoteRead(std::string_view place, uint64_t bytes) {
  if (place.size() >= sizeof reads[0].place) return nullptr;
  const size_t at = readCount;
  if (at == kMaxReads) return nullptr;
  place.copy(reads[at].place, place.size());
  reads[at].bytes = bytes;
  readCount = at + 1;
  return &reads[at];
}

void FileActivity::NoteOpenFault(std::string_view place, int error) {
  const size_t at = openFaultCount++;
  if (at < kMaxOpenFaults) openFaults[at].Set(place, error);
}

}  // namespace host
