#include "run/plan.h"

#include <filesystem>
#include <limits>
#include <system_error>

#include "base/units.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "recording/delivery.h"
#include "run/command_words.h"
#include "run/inputs.h"
#include "run/shared_files.h"
#include "run/stopped.h"

namespace host {

namespace {

constexpr double kMaxSecondsOfNeverReturning = 10;

// Why a routine is not one to run; empty when it is.
std::string SkipReason(const CatalogueRow& row) {
  if (row.helper) return "a helper: routines call it, it does not run by itself";
  if (!row.calledBy.empty()) return Availability(row) + ", it does not run by itself";
  return "";
}

// The arguments, where files stand in for those that name them.
std::vector<std::string> Completed(const CatalogueRow& row, const Case& what) {
  if (what.in.empty() && what.out.empty()) return what.arguments;
  return CompleteArguments(row, what.arguments, what.in);
}

// What the arguments could have been where files stand in for some of them.
std::string ShortForm(const CatalogueRow& row, const Case& what) {
  if (what.in.empty() && what.out.empty()) return "";
  std::string others;
  for (const std::string& each : OtherParameters(row)) others += " " + each;
  return others.empty() ? "" : "; with --in and --out for the files it takes" + others;
}

void FillIn(Plan& plan) {
  plan.row = &FindRow(plan.what.routine);
  plan.engine = FindEngine(plan.what.engine);
  const CatalogueRow& row = *plan.row;
  plan.what.arguments = Completed(row, plan.what);
  const ArgumentList words = plan.Words();
  if (plan.what.debug) plan.timeout = std::numeric_limits<double>::infinity();
  if (!plan.what.debug && !plan.what.timeout && row.neverReturns)
    plan.timeout = kMaxSecondsOfNeverReturning;
  if (const std::string skip = SkipReason(row); !skip.empty()) {
    plan.stop = Stop{{Cause::kNotRunnable, skip}};
    return;
  }
  if (const std::string fault = harness::ArgumentFault(row, words); !fault.empty()) {
    throw UsageError{plan.what.routine + " " + fault + ": " + Declaration(row) +
                     ShortForm(row, plan.what)};
  }
  std::string lacking = harness::Lacking(row, words);
  if (plan.what.engineOnly && lacking.empty())
    lacking = NotInEngine(plan.engine, row.declared.words.name);
  if (!lacking.empty()) {
    plan.stop = Stop{{Cause::kNotRunnable, lacking}};
    return;
  }
  plan.inputs = DeclaredInputs(row, words, plan.what.work);
  plan.outputs = PlaceFiles(harness::Outputs(row, words), row.declared.words.parameters, words,
                            plan.what.work);
  plan.sources = NameFiles("--in", plan.what.in, plan.inputs, row.listed != nullptr);
  plan.takers = NameFiles("--out", plan.what.out, plan.outputs);
  for (const NamedFile& taker : plan.takers.files) {
    const FilePlace& output = plan.outputs[taker.index];
    std::string fault = EndingFault(taker.path, output.use.container, output.name);
    if (fault.empty()) fault = PlaceFault(taker.path);
    if (!fault.empty()) throw UsageError{fault};
  }
  RefuseSharedFiles(plan.inputs, plan, [] {});
  plan.fruitless = harness::Fruitless(row, words);
}

// Empty when it has been removed.
std::string CurrentFolder() {
  std::error_code error;
  return std::filesystem::current_path(error).string();
}

}  // namespace

ArgumentList Plan::Words() const { return {what.arguments.begin(), what.arguments.end()}; }

Plan MakePlan(const Case& what) {
  Plan plan = {.what = what, .started = TimeOfDay(), .timeout = what.timeout.value_or(kMaxSeconds)};
  StopWhereFailing(plan.stop, [&] { FillIn(plan); });
  return plan;
}

RunReport ReportOf(const Plan& plan) {
  return {.started = plan.started,
          .workspace = plan.what.work,
          .timeout = plan.timeout,
          .routine = plan.what.routine,
          .arguments = plan.what.arguments,
          .directory = CurrentFolder(),
          .command = CommandWords(plan.what),
          .engine = plan.engine,
          .strict = plan.what.strict,
          .fruitless = plan.fruitless,
          .stop = plan.stop};
}

}  // namespace host
