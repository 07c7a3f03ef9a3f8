// Runs the controls of the measures that are named, or of all, and prints those that do not hold:
// the same as the program's selftest without the program, for the mutants of the measures.

#include <cstdio>
#include <string_view>
#include <vector>

#include "audio_measures/measure.h"
#include "selftest/run_controls.h"

int main(int argc, char** argv) {
  std::vector<std::string_view> names(argv + 1, argv + argc);
  if (names.empty()) {
    for (const auto& measure : audio_measures::AllMeasures()) names.push_back(measure.name);
  }
  bool all = true;
  for (const host::Outcome& outcome : host::RunControls(names)) {
    if (outcome.holds) continue;
    all = false;
    printf("%s: %s: %.9g (%s) for %.9g +- %.3g (%s)\n", outcome.control->name.c_str(),
           std::string(outcome.expected.measure).c_str(), outcome.value.value_or(-999),
           outcome.reason.c_str(), outcome.expected.value, outcome.expected.tolerance,
           outcome.expected.reason.c_str());
  }
  return all ? 0 : 1;
}
