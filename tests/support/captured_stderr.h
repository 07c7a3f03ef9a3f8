#pragma once

#include <string>
#include <vector>

// Collects what the process writes to its standard error stream while this object lives.
class CapturedStderr {
 public:
  CapturedStderr();
  ~CapturedStderr();  // Standard error goes where it went before.
  CapturedStderr(const CapturedStderr&) = delete;
  CapturedStderr& operator=(const CapturedStderr&) = delete;

  // All of it so far.
  std::string Text() const;

  // Its lines so far, without their newlines. An unfinished last line counts.
  std::vector<std::string> Lines() const;

 private:
  int m_file;
  int m_before;
};
