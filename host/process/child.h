#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine_work.h"
#include "process/limits.h"
#include "process/progress.h"
#include "process/relay.h"

namespace host {

// A routine in a process of its own, so that a crash, an abort or a hang ends that process and not
// the host.

// What went wrong with a file that the routine used.
struct FileProblem {
  int error = 0;  // errno; 0 when nothing went wrong.
  std::string name = {};
};

// A file that the engine could not use, and why.
struct EngineRefusal {
  std::string place = {};  // In the workspace.
  std::string reason = {};
};

struct ChildOutcome {
  // A routine that never returns is stopped when its time is up, which is no time-out.
  enum class End { kReturned, kStopped, kCrashed, kTimedOut, kInterrupted };
  End end = End::kReturned;
  std::string how = {};                       // How it crashed: "killed by signal 6 (Aborted)".
  int crashSignal = 0;                        // That killed it; 0 for any other end.
  int stopSignal = 0;                         // By which it stood still when its time was up.
  int interruption = 0;                       // The signal that the host was told to end by.
  FileProblem writeFault = {};                // The first file that could not be written whole.
  FileProblem readFault = {};                 // The first file that could not be read.
  std::vector<FileProblem> openFaults = {};   // Named by their place in the workspace.
  int logFault = 0;                           // errno when the log could not be written; else 0.
  bool delivered = true;                      // Whether stdout has taken all that it printed.
  double elapsed = 0;                         // Seconds by the clock, until the routine's end.
  double ranOn = 0;                           // Seconds that its process went on after it returned.
  std::optional<double> cpu = {};             // Seconds of processing, user and system.
  std::optional<uint64_t> peakMemory = {};    // Bytes
  std::optional<DeviceGaps> deviceGaps = {};  // Known once the routine has returned.
  std::vector<EngineRefusal> refusals = {};   // The same.
};

// What a child does: the routine, and what is to be done in its process after it has returned.
struct ChildWork {
  std::function<void()> routine;
  std::function<EngineFindings()> afterwards;
};

// Does the work in a child with `workspace` as its current directory and its files mapped into it
// (see path_map.h), for as long as the limits allow. What it prints goes to stdout, and its stderr
// to stderr and to `log`, as it comes; `hearing` gets both. All that the routine has started ends
// with it, and it ends with the host, however that ends. To be called on the host's only thread.
// Throws std::system_error when no process can be started.
ChildOutcome RunInChild(const ChildWork& work, const std::string& workspace, Limits& limits,
                        FILE* log, const Hearing& hearing, Progress& progress);

}  // namespace host
