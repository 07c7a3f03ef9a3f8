#pragma once

#include <memory>
#include <string>
#include <vector>

#include "files/temporary_workspace.h"

namespace host {

// Who runs a suite: an audio_bench, and the engine that it is to take; an empty one for its usual.
struct SuiteBench {
  std::string program;
  std::string engine = {};
};

// Where a program prints to that is run.
enum class PrintsTo { kStderr, kNowhere };

// Has a program run a suite with `words` after "suite", its results in a folder. Returns the signal
// by which somebody asked for an end meanwhile, 0 for none. Throws UsageError when it leaves none.
int RunSuiteBy(const SuiteBench& bench, const std::vector<std::string>& words,
               const std::string& folder, PrintsTo prints);

// One suite run by two programs or on two engines, the results of each in a folder of its own.
class BenchSuites {
 public:
  // Runs `benches`, which are two, with `words` after "suite". `out` is the folder for both
  // results; empty for a temporary one, which goes with this object unless it is kept. What they
  // print goes to stderr. Throws UsageError when one leaves no results.
  BenchSuites(const std::vector<SuiteBench>& benches, const std::vector<std::string>& words,
              const std::string& out);

  // Says on stderr what becomes of a temporary folder, and keeps it if it is to be.
  void EndTemporary(bool keep);

  std::string a() const { return m_out + "/a"; }
  std::string b() const { return m_out + "/b"; }

 private:
  std::unique_ptr<TemporaryWorkspace> m_temporary;
  std::string m_out;
};

}  // namespace host
