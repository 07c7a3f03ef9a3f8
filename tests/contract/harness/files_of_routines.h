#pragma once

#include <string>
#include <vector>

// The files of every routine that has some, in the order of the catalogue, written apart from its
// rows: a text for each file or list of files.
struct RoutineFiles {
  const char* routine;
  std::vector<std::string> inputs;
  std::vector<std::string> outputs;
};

const std::vector<RoutineFiles>& FilesOfRoutines();
