#pragma once

#include <cstddef>
#include <string>

#include "base/json_parts.h"
#include "base/paint.h"
#include "suite/suite_counts.h"

namespace host {

// What is seen of a suite while it runs: on a terminal one line on stderr that is written anew,
// else a line on stdout for each case that has ended.
class SuiteProgress {
 public:
  // `kept` of the cases have ended before. `paint` is for stdout.
  SuiteProgress(size_t cases, const SuiteCounts& kept, const Paint& paint);
  ~SuiteProgress();
  SuiteProgress(const SuiteProgress&) = delete;
  SuiteProgress& operator=(const SuiteProgress&) = delete;

  void Ended(const Json& record);

  // Shows the line anew, a few times a second.
  void Show();

  const SuiteCounts& counts() const { return m_counts; }

 private:
  bool m_terminal;
  size_t m_cases;
  size_t m_kept;
  SuiteCounts m_counts;
  Paint m_paint;
  double m_start;
  double m_next = 0;
  bool m_shown = false;
};

// "pass  aec-1  1.20 s", and the reason of what did not plainly pass.
std::string CaseLine(const Json& record, const Paint& paint = {});

}  // namespace host
