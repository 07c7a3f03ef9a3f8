#include "run/problems.h"

namespace host {

std::vector<Problem> Problems::All() const {
  std::vector<Problem> all = run;
  for (const auto* files : {&inputs, &outputs}) {
    for (const std::vector<Problem>& own : *files) all.insert(all.end(), own.begin(), own.end());
  }
  return all;
}

Problems KnownProblems(const RunReport& report) {
  Problems problems;
  for (const FileReport& input : report.inputs) problems.inputs.push_back(input.problems);
  for (const FileReport& output : report.outputs) problems.outputs.push_back(output.problems);
  return problems;
}

}  // namespace host
