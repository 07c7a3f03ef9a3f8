#pragma once

#include <cstdio>
#include <string>

#include "base/json_parts.h"
#include "suite/suite_counts.h"

namespace host {

// The forms in which the results of a suite are written: begun, given one case after the other in
// declared order, and ended. What cannot be written is seen in the file's own error flag.

class JsonResults {
 public:
  // `header` is the first line of the plan.
  JsonResults(FILE* file, const Json& header, const SuiteCounts& counts);
  void Add(Json record);
  void End();

 private:
  FILE* m_file;
  bool m_first = true;
};

// A row for each figure, result and guard, one with an empty kind for a case without any.
class CsvResults {
 public:
  explicit CsvResults(FILE* file);
  void Add(const Json& record);

 private:
  FILE* m_file;
};

}  // namespace host
