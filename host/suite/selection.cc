#include "suite/selection.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "catalogue/list_filter.h"
#include "catalogue/rows.h"
#include "run/plan.h"
#include "suite/case_order.h"
#include "suite/catalogue_cases.h"
#include "suite/input_names.h"
#include "suite/suite_file.h"

namespace host {

namespace {

// Throws UsageError when the case cannot be run as it is declared. Completes its arguments.
void CheckCase(SuiteCase& one) {
  if (!one.skip.empty()) return;
  const Plan plan = MakePlan(RunOf(one, "bench_work", ""));
  if (plan.stop && plan.stop->refusal) throw UsageError{one.at + plan.stop->refusal->message};
  one.arguments = plan.what.arguments;
  if (plan.row == nullptr || !CanBeRun(*plan.row)) return;
  if (one.engineOnly) one.skip = NotInEngine(plan.engine, one.routine);
  try {
    CheckFileNames(one);
  } catch (const UsageError& error) {
    throw UsageError{one.at + error.message};
  }
}

bool Chosen(const SuiteCase& one, const SuiteOptions& options) {
  if (!options.glob.empty() && fnmatch(options.glob.c_str(), one.id.c_str(), FNM_CASEFOLD) != 0) {
    return false;
  }
  return options.group.empty() || GroupWord(FindRow(one.routine).group) == options.group;
}

[[noreturn]] void RefuseEmpty(const SuiteOptions& options, const std::vector<SuiteCase>& cases) {
  if (options.glob.empty()) throw UsageError{"no case is in the group " + options.group};
  std::vector<std::string_view> ids;
  for (const SuiteCase& one : cases) ids.push_back(one.id);
  const auto alike = NamesAlike(options.glob, ids);
  throw UsageError{"no case is like \"" + options.glob + "\"" +
                   (options.group.empty() ? "" : " in the group " + options.group) +
                   (alike.empty() ? "" : "; did you mean " + std::string(alike.front()) + "?")};
}

std::string DigestOf(const std::vector<SuiteCase>& cases, const std::vector<bool>& chosen) {
  std::string text;
  for (size_t i = 0; i < cases.size(); ++i) {
    if (!chosen[i]) continue;
    text += cases[i].id + '\0' + cases[i].routine + '\0';
    for (const std::string& word : cases[i].arguments) text += word + '\0';
    text += '\n';
  }
  char digest[17];
  snprintf(digest, sizeof digest, "%016lx", Fnv1a(text));
  return digest;
}

// Adds what the cases need that are to run, and what that needs.
void AddNeeded(const CaseOrder& order, std::vector<bool>& runs) {
  std::vector<size_t> open;
  for (size_t i = 0; i < runs.size(); ++i) {
    if (runs[i]) open.push_back(i);
  }
  while (!open.empty()) {
    const size_t at = open.back();
    open.pop_back();
    for (const size_t before : order.Before(at)) {
      if (!runs[before]) open.push_back(before);
      runs[before] = true;
    }
  }
}

}  // namespace

Selection SelectCases(const SuiteOptions& options) {
  std::vector<SuiteCase> cases =
      options.file.empty() ? CatalogueCases(options.demo) : ReadSuite(options.file);
  const CaseOrder order(cases);
  for (SuiteCase& one : cases) {
    one.engine = options.engine;
    one.engineOnly = options.engineOnly;
    CheckCase(one);
  }
  CheckGroup(options.group);

  Selection selection;
  if (!options.file.empty()) selection.margins = ReadSuiteMargins(options.file);
  std::vector<bool> chosen(cases.size());
  for (size_t i = 0; i < cases.size(); ++i) {
    chosen[i] = Chosen(cases[i], options);
    if (chosen[i]) cases[i].index = selection.chosen++;
  }
  if (selection.chosen == 0) RefuseEmpty(options, cases);
  selection.digest = DigestOf(cases, chosen);

  std::vector<bool> counted(cases.size());
  for (size_t i = 0; i < cases.size(); ++i) {
    counted[i] = chosen[i] && options.shard.Holds(cases[i].id);
  }
  std::vector<bool> runs = counted;
  AddNeeded(order, runs);
  // In their own place: of many cases two lists are too much.
  size_t kept = 0;
  for (size_t i = 0; i < cases.size(); ++i) {
    if (!runs[i]) continue;
    cases[i].counted = counted[i];
    cases[i].strict = cases[i].strict || options.strict;
    if (kept != i) cases[kept] = std::move(cases[i]);
    ++kept;
  }
  cases.erase(cases.begin() + static_cast<std::ptrdiff_t>(kept), cases.end());
  selection.cases = std::move(cases);
  return selection;
}

}  // namespace host
