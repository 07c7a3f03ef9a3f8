#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "files/file_activity.h"
#include "process/limits.h"
#include "process/outlet.h"

namespace host {

// The host's stdout and stderr while a routine runs, and on a terminal the line that tells that a
// long run is alive. That line is the last one of the terminal and gives way to whatever else is
// printed. Nothing here waits for a reader.
class Progress {
 public:
  // `expectedFiles` is how many files the run is known to open; 0 when that is not known.
  Progress(std::string routine, uint64_t expectedFiles);
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows the state after `elapsed` seconds, a few times a second. Nothing is shown in the first
  // second, after a line that is not complete, or when stderr is no terminal.
  void Show(double elapsed, const FileActivity& files);

  // Print text, at once where the reader takes it.
  void PrintOutput(std::string_view text) { Print(m_output, text); }
  void PrintError(std::string_view text) { Print(m_error, text); }

  // Waits until all that was printed is read, for as long as the limits allow, and for two seconds
  // in any case. False when stdout is not read by then or cannot be written.
  bool Deliver(Limits& limits);

  Outlet& output() { return m_output; }
  Outlet& error() { return m_error; }

 private:
  std::string Files(double elapsed, const FileActivity& files) const;
  void Clear();
  void Print(Outlet& outlet, std::string_view text);

  std::string m_routine;
  uint64_t m_expectedFiles;
  bool m_terminal;
  Outlet m_output;
  Outlet m_error;
  bool m_shown = false;
  bool m_lineOpen = false;  // What was printed last did not end its line.
  double m_next = 1;        // Seconds; when to show it again.
};

}  // namespace host
