#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "run/case.h"

namespace host {

// One case of a suite: a routine with its words, in a workspace of its own.
struct SuiteCase {
  size_t index = 0;     // Its place among the declared ones, counted from 0.
  std::string id = {};  // Also the name of its folder.
  std::string routine = {};
  std::vector<std::string> arguments = {};
  std::vector<std::pair<std::string, std::string>> inputs = {};  // File of the routine, its source.
  std::vector<std::string> measures = {};                        // Names; empty for those that fit.
  Scorers scorers = {};  // Those of them that are no measures of the bench.
  // What outputs are measured against.
  NamedSources reference = {};
  NamedSources far = {};
  NamedSources near = {};
  Truths truths = {};  // What figures and results should be.
  std::vector<std::string> tags = {};
  std::string known = {};               // Why it is known to fail; empty when it is not.
  std::string cluster = {};             // Those that share what they were made of; empty for none.
  std::vector<std::string> after = {};  // Ids of the cases whose outputs it reads.
  std::optional<double> timeout = {};   // Seconds; as for a run when not given.
  std::optional<double> linger = {};    // The same.
  std::string engine = {};              // As of a run, and so is the next.
  bool engineOnly = false;
  bool strict = false;      // A warning is a failure.
  std::string sameAs = {};  // Id of the case whose outputs it must equal; or empty.
  std::string skip = {};    // Why it is not to be run; empty when it is.
  bool demo = false;        // It runs on the recordings of `demo`.
  bool counted = true;      // False when it runs for the outputs that others read.
  std::string at = {};      // Where it was declared: "suite.toml:3:1: ", or empty.
};

// The run of a case in a workspace; `report` is where its report goes.
Case RunOf(const SuiteCase& one, const std::string& workspace, const std::string& report);

}  // namespace host
