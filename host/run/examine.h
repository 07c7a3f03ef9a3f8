#pragma once

#include <cstdio>
#include <optional>
#include <string>

#include "files/file_before.h"
#include "files/workspace.h"
#include "process/limits.h"
#include "report/report.h"

namespace host {

// Looks at the files of a run after its end, for as long as the limits allow: a file that is looked
// at later has no figures.
class Examiner {
 public:
  struct Wishes {
    std::string copies = {};   // The workspace for copies of headerless audio; empty for no copies.
    bool listFigures = false;  // Also figures of the files of lists.
  };

  // `seconds` is the time that the limits give.
  Examiner(Limits& limits, double seconds, Wishes wishes);

  // Fills in what is known of an input; `before` is what it was before the run.
  void LookAtInput(FileReport& input, const FileBefore& before);

  FileReport Output(const FilePlace& place, const OutputBefore& before);

  // What ended the look at the files before all were measured and copied; nothing when nothing did.
  const std::optional<Problem>& lookEnded() const { return m_lookEnded; }

 private:
  bool GoOn() const { return m_limits.Check() == Limits::Stop::kNone; }
  void Look(FileReport& report, bool copy);
  void Measure(FILE* file, FileReport& report, bool copy);
  std::string GiveUp(FileReport& report);

  Limits& m_limits;
  double m_seconds;
  Wishes m_wishes;
  std::optional<Problem> m_lookEnded;
};

}  // namespace host
