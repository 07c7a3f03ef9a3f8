#include "selftest/selftest.h"

#include <string_view>
#include <vector>

#include "audio_measures/measure.h"
#include "base/exit_code.h"
#include "report/output.h"
#include "selftest/run_controls.h"
#include "selftest/selftest_forms.h"
#include "selftest/trust.h"

namespace host {

namespace {

std::vector<std::string_view> ComputedMeasures() {
  std::vector<std::string_view> names;
  for (const audio_measures::Measure& measure : audio_measures::AllMeasures()) {
    if (measure.version > 0) names.push_back(measure.name);
  }
  return names;
}

}  // namespace

int Selftest(bool json) {
  const std::vector<std::string_view> names = ComputedMeasures();
  const std::vector<Outcome> outcomes = RunControls(names);
  bool hold = true;
  for (const std::string_view name : names) {
    const bool holds = AllHold(outcomes, name);
    KeepTrust(name, holds);
    hold = hold && holds;
  }
  const int printed =
      PrintResults(json ? SelftestJson(names, outcomes) : SelftestText(names, outcomes));
  if (printed != exit_code::kPass) return printed;
  return hold ? exit_code::kPass : exit_code::kFail;
}

}  // namespace host
