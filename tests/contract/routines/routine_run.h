#pragma once

#include <string>
#include <vector>

#include "catalogue/catalogue.h"

// What becomes of one run of a routine.
struct RoutineRun {
  std::vector<std::string> calls;
  std::vector<std::string> declared;  // The outputs of its row, and
  std::vector<std::string> written;   // the files that it made, in ascending order.
  std::string printed;                // What the recorded printf and puts have printed.
  std::string output;                 // What has come out of the process, stdout and stderr.
  std::vector<std::string> strays;    // What is on the disk, in the folder where it ran.
  bool cameBack = true;               // Whether the current folder is still that one.
};

enum class Situation {
  kUsual,
  kNoInputs,
  kOperationsFail,
  kEverythingFails,
  kDiskFull,
  kOutputsUnwritable
};

// Runs the routine in an empty folder. A routine that waits for ever is ended in its 20th sleep, of
// which the last call then tells; what it throws is the last call, too.
RoutineRun RunRoutine(const harness::CatalogueRow& row, Situation situation);

// Runs it with WAVE inputs of this format (Hz, channels).
RoutineRun RunRoutineOn(const harness::CatalogueRow& row, int rate, int channels);

// The calls with which something is said, on stdout or in the log, and how it ended if it did not
// return.
std::vector<std::string> Said(const RoutineRun& run);

// Each line once, where it comes first; "3 x line" for one that comes three times.
std::vector<std::string> Counted(const std::vector<std::string>& lines);
