#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace host {

// The line that tells on a terminal that a long run is alive. It is the last line of the terminal
// and gives way to whatever else is printed.
class Progress {
 public:
  // `expectedFiles` is how many files the run is known to open; 0 when that is not known.
  Progress(std::string routine, uint64_t expectedFiles);
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows the state after `elapsed` seconds, a few times a second. Nothing is shown in the first
  // second, behind a line that is not complete, or when stderr is no terminal.
  void Show(double elapsed, uint64_t openedFiles);

  // Prints text on stdout or stderr, at once.
  void Print(FILE* stream, std::string_view text);

 private:
  void Clear();

  std::string m_routine;
  uint64_t m_expectedFiles;
  bool m_terminal;
  bool m_shown = false;
  bool m_lineOpen = false;  // What was printed last did not end its line.
  double m_next = 1;        // Seconds; when to show it again.
};

}  // namespace host
