#pragma once

#include <span>
#include <string>
#include <vector>

#include "suite/suite.h"

namespace CLI {
class App;
}

namespace host {

// The words after `suite` and after `merge`.
class SuiteWords {
 public:
  // Declares both commands.
  SuiteWords(CLI::App& app, SuiteOptions& suite, MergeOptions& merge);

  // Fills in what the options do not set by themselves; `command` is all words of the command line.
  // Throw UsageError.
  void TakeSuite(std::span<const std::string> command);
  void TakeMerge(std::span<const std::string> command);

 private:
  void AddSuite(CLI::App& app);
  void AddMerge(CLI::App& app);

  SuiteOptions& m_suite;
  MergeOptions& m_merge;
  std::vector<std::string> m_words;  // The suite and the glob.
  std::string m_shard;
  bool m_all = false;
};

}  // namespace host
