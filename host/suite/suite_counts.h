#pragma once

#include <cstddef>
#include <string>

#include "base/json_parts.h"

namespace host {

// How many cases of a suite came out how. A known failure counts as such alone.
struct SuiteCounts {
  size_t pass = 0;
  size_t warn = 0;
  size_t fail = 0;
  size_t error = 0;
  size_t skip = 0;
  size_t known = 0;
  size_t notRun = 0;
  int worst = 0;  // Exit code of the worst case that is no known failure: 0, 1, 3 or 4.

  void Add(const Json& record);

  size_t Ended() const { return pass + warn + fail + error + skip + known; }
  size_t Failed() const { return fail + error; }

  // Of the suite, if nobody interrupted it.
  int ExitCode() const;

  // "12 passed, 1 failed, 3 skipped", and what else there is.
  std::string Text() const;

  Json AsJson() const;
};

}  // namespace host
