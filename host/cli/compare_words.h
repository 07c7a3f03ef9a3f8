#pragma once

#include <span>
#include <string>
#include <vector>

#include "compare/baseline.h"
#include "compare/compare.h"

namespace CLI {
class App;
}

namespace host {

// The words after `compare` and after `baseline`.
class CompareWords {
 public:
  // Declares both commands.
  CompareWords(CLI::App& app, CompareOptions& compare, BaselineOptions& baseline);

  // Fills in what the options do not set by themselves. `literal` are the words after "--", which
  // are for the suite. Throw UsageError.
  void TakeCompare(std::span<const std::string> literal);
  void TakeBaseline();

 private:
  void AddCompare(CLI::App& app);
  void AddBaseline(CLI::App& app);
  // Who runs the suite first: two programs, or this one on two engines.
  void TakeBenches();

  CompareOptions& m_compare;
  BaselineOptions& m_baseline;
  std::vector<std::string> m_sets;     // Or the words of the suite.
  std::vector<std::string> m_margins;  // "si_sdr=0.2"
  std::vector<std::string> m_benches;
  std::vector<std::string> m_engines;
  std::vector<std::string> m_action;  // The words after `baseline`.
};

}  // namespace host
