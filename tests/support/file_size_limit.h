#pragma once

#include <sys/resource.h>

// While this object lives, no file of this process grows beyond a number of bytes: writes fail as
// they do on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit m_before;
  void (*m_handlerBefore)(int);
};
