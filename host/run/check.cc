#include "run/check.h"

#include <utility>

#include "run/input_problem.h"
#include "run/inputs.h"
#include "run/shared_files.h"
#include "run/stopped.h"
#include "run/wave_input.h"

namespace host {

namespace {

// Looks at the inputs, and at those that the first one lists.
void LookAtInputs(const Plan& plan, Limits& limits, std::vector<FileReport>& inputs) {
  const auto goOn = [&] { EndAtLimits(limits, plan.timeout, "looking at its inputs"); };
  const auto look = [&](const FilePlace& place) {
    goOn();
    inputs.push_back({.place = place});
    if (auto problem = InputProblem(place)) inputs.back().problems.push_back(*problem);
  };
  for (const FilePlace& place : plan.inputs) look(place);
  if (plan.row->listed == nullptr || !MayRun(inputs)) return;

  const ListedInputs listed =
      ReadListedInputs(*plan.row, plan.Words(), plan.what.work, plan.inputs.front(), goOn);
  if (listed.problem) inputs.front().problems.push_back(*listed.problem);
  std::vector<FilePlace> all = plan.inputs;
  all.insert(all.end(), listed.places.begin(), listed.places.end());
  RefuseSharedFiles(all, plan, goOn);
  for (const FilePlace& place : listed.places) look(place);
}

void MakeReady(const Plan& plan, Limits& limits, Checked& checked) {
  CreateFolder(plan.what.work);
  if (checked.lock == nullptr) checked.lock = LockWorkspace(plan, limits);
  RefuseOutputs(plan.outputs, plan.what.work);
  if (plan.what.wav) RemoveCopies(plan.outputs, plan.what.work);
  checked.ready = true;
}

}  // namespace

Checked Check(const Plan& plan, Staged staged, Limits& limits) {
  Checked checked = {.lock = std::move(staged.lock),
                     .staged = std::move(staged.files),
                     .stop = std::move(staged.stop)};
  StopWhereFailing(checked.stop, [&] {
    LookAtInputs(plan, limits, checked.inputs);
    AddFormatProblems(checked.inputs, plan.engine);
    if (MayRun(checked.inputs)) MakeReady(plan, limits, checked);
  });
  return checked;
}

RunReport ReportOf(const Plan& plan, const Checked& checked) {
  RunReport report = ReportOf(plan);
  report.staged = checked.staged;
  report.inputs = checked.inputs;
  if (checked.ready) report.log = plan.Log().Path();
  report.stop = checked.stop;
  return report;
}

}  // namespace host
