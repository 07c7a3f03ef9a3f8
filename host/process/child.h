#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine_work.h"
#include "files/file_activity.h"
#include "process/limits.h"
#include "process/progress.h"
#include "process/relay.h"

namespace host {

// A routine in a process of its own, so that a crash, an abort or a hang ends that process and not
// the host.

// What went wrong with a file that the routine used.
struct FileProblem {
  // An errno; 0 when nothing went wrong.
  int error = 0;
  std::string name = {};
};

// A file that the engine could not use, and why.
struct EngineRefusal {
  // Relative to the workspace.
  std::string place = {};
  std::string reason = {};
};

// How far the routine came in a file.
struct FileRead {
  // Relative to the workspace.
  std::string place = {};
  uint64_t bytes = 0;
};

struct ChildOutcome {
  // A routine that never returns is stopped when its time is up, which is no time-out.
  enum class End { kReturned, kStopped, kCrashed, kTimedOut, kInterrupted };
  End end = End::kReturned;

  // How it crashed: "killed by signal 6 (Aborted)".
  std::string how = {};

  // Each is 0 where there was no such signal: the one that killed the routine, the one that it had
  // been stopped by when its time was up, and the one that told the host to end.
  int crashSignal = 0;
  int stopSignal = 0;
  int interruption = 0;

  // The first file that could not be written whole, and the first one that could not be read.
  FileProblem writeFault = {};
  FileProblem readFault = {};

  // The files that could not be opened, named by their place in the workspace.
  std::vector<FileProblem> openFaults = {};

  // An errno when the log could not be written; else 0.
  int logFault = 0;

  // Whether stdout has taken all that the routine printed.
  bool delivered = true;

  // Seconds by the clock until the routine's end, and how long its process went on after that.
  double elapsed = 0;
  double ranOn = 0;

  // Seconds of processing, user and system, and the peak of the memory in bytes.
  std::optional<double> cpu = {};
  std::optional<uint64_t> peakMemory = {};

  // These three are known once the routine has returned.
  std::optional<DeviceGaps> deviceGaps = {};
  std::vector<EngineRefusal> refusals = {};

  // What the engine said that it refused, or left out or alone.
  std::vector<std::string> engineLines = {};

  // The files that the routine has read from, those of them that were noted.
  std::vector<FileRead> reads = {};
};

// What the engine says of a run, and what went wrong with its files, as parts of its outcome.
void TakeFindings(const EngineFindings& findings, ChildOutcome& outcome);
void TakeFaults(const FileActivity& files, ChildOutcome& outcome);

// What a child does: the routine, and what is to be done in its process after it has returned.
struct ChildWork {
  std::function<void()> routine;
  std::function<EngineFindings()> afterwards;
};

// Does the work in a child with `workspace` as its current directory and its files mapped into it
// (see path_map.h), for as long as the limits allow. What it prints goes to stdout, and its stderr
// to stderr and to `log`, as it comes; `hearing` gets both. All that the routine has started ends
// with it, and it ends with the host, however that ends. The log of one that crashes ends with the
// calls that led there. It is called on the host's only thread.
// Throws std::system_error when no process can be started.
ChildOutcome RunInChild(const ChildWork& work, const std::string& workspace, Limits& limits,
                        FILE* log, const Hearing& hearing, Progress& progress);

}  // namespace host
