#include "suite/suite.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <optional>
#include <thread>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "process/limits.h"
#include "report/origin.h"
#include "report/output.h"
#include "results/schema_versions.h"
#include "suite/case_record.h"
#include "suite/case_work.h"
#include "suite/scratch.h"
#include "suite/selection.h"
#include "suite/suite_folder.h"
#include "suite/suite_journal.h"
#include "suite/suite_progress.h"
#include "suite/suite_results.h"
#include "suite/suite_runner.h"
#include "suite/suite_summary.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr double kResultsSeconds = 5;  // Between two writes of the results.

std::string TimeOfDay() {
  const time_t now = time(nullptr);
  tm parts;
  char text[32];
  return std::string(text, strftime(text, sizeof text, "%FT%TZ", gmtime_r(&now, &parts)));
}

// The first line of the plan.
Json Header(const SuiteOptions& options, const Selection& selection) {
  Json header = {{"schema_version", kResultsSchema}};
  header.update(OriginJson(FindEngine(options.engine)));
  header["started"] = TimeOfDay();
  header["command"] = options.command;
  header["suite"] = options.file.empty() ? Json() : Json(options.file);
  header["shard"] = Json();
  if (options.shard.of > 0) {
    header["shard"] = {{"index", options.shard.index}, {"of", options.shard.of}};
  }
  header["margins"] = Json::object();
  for (const auto& [name, margin] : selection.margins) header["margins"][name] = margin;
  header["chosen"] = selection.chosen;
  header["selection"] = selection.digest;
  return header;
}

void WritePlan(const std::string& folder, const SuiteOptions& options, const Selection& selection) {
  NewLines plan = NewLines::ForPlan(folder);
  plan.Add(Header(options, selection));
  for (const SuiteCase& one : selection.cases) {
    if (one.counted) plan.Add(NotRunRecord(one));
  }
  plan.Publish();
}

std::string DryRun(const Selection& selection) {
  std::string text;
  size_t counted = 0;
  for (const SuiteCase& one : selection.cases) {
    std::string line = one.id;
    if (one.id != one.routine) line += "  " + one.routine;
    for (const std::string& word : one.arguments) line += " " + word;
    if (!one.skip.empty()) line += "  (skipped: " + one.skip + ")";
    if (!one.counted) line += "  (for the cases that follow it)";
    text += Printable(line) + "\n";
    counted += one.counted ? 1 : 0;
  }
  return text + std::to_string(counted) + (counted == 1 ? " case\n" : " cases\n");
}

// What an earlier suite in the folder has left that holds for this one as well, and is left of
// cases.jsonl.
struct Kept {
  std::vector<bool> cases;
  SuiteCounts counts;
};

// A record that was kept, with what the suite says of the case today.
Json Renewed(const SuiteCase& one, const Json& earlier) {
  Json record = NotRunRecord(one);
  for (const auto& [key, value] : earlier.items()) {
    const bool declared = key == "index" || key == "tags" || key == "known" || key == "cluster";
    if (!declared) record[key] = value;
  }
  return record;
}

// Adds them to `lines`.
Kept FindKept(const SuitePlace& suite, NewLines& lines) {
  Kept kept = {std::vector<bool>(suite.cases.size()), {}};
  std::map<std::string, size_t> places;
  for (size_t at = 0; at < suite.cases.size(); ++at) {
    if (suite.cases[at].counted) places.emplace(suite.cases[at].id, at);
  }
  const SuiteJournal journal(suite.folder);
  for (size_t i = 0; i < journal.size(); ++i) {
    if (!journal.Ended(i)) continue;
    const Json earlier = journal.Read(i);
    const auto place = places.find(earlier.value("id", ""));
    if (place == places.end()) continue;
    const size_t at = place->second;
    const Json record = Renewed(suite.cases[at], earlier);
    if (!HasOutputs(record) || kept.cases[at]) continue;
    if (record.value(kFingerprintKey, "") != CaseFingerprint(suite, at)) continue;
    kept.cases[at] = true;
    lines.Add(record);
    kept.counts.Add(record);
  }
  return kept;
}

// A case that is not counted runs only where one that runs again reads from it.
void LeaveOutUnneeded(const SuitePlace& suite, std::vector<bool>& kept) {
  std::vector<bool> needed(suite.cases.size());
  std::vector<size_t> open;
  for (size_t at = 0; at < suite.cases.size(); ++at) {
    if (suite.cases[at].counted && !kept[at]) open.push_back(at);
  }
  while (!open.empty()) {
    const size_t at = open.back();
    open.pop_back();
    for (const size_t before : suite.order.Before(at)) {
      if (!suite.cases[before].counted && !needed[before]) open.push_back(before);
      needed[before] = true;
    }
  }
  for (size_t at = 0; at < suite.cases.size(); ++at) {
    if (!suite.cases[at].counted && !needed[at]) kept[at] = true;
  }
}

size_t Jobs(int asked) {
  return asked > 0 ? static_cast<size_t>(asked) : std::max(1U, std::thread::hardware_concurrency());
}

// Of a case that has ended, whatever its end was.
void LeaveScratch(const SuitePlace& suite, size_t at) {
  if (suite.scratch.empty()) return;
  SuitePlace there = suite;
  there.folder = suite.scratch;
  std::error_code ignored;
  fs::remove_all(there.Workspace(suite.cases[at].id), ignored);
}

// What never came home.
void RemoveIncoming(const std::string& folder) {
  std::error_code ignored;
  fs::remove_all(IncomingFolder(folder), ignored);
}

// Runs what is to run. Returns the signal by which somebody asked for an end; 0 for none.
int RunCases(const SuitePlace& suite, const SuiteOptions& options, const Kept& kept,
             size_t counted) {
  FindCommonFacts();
  const HostSignals signals;
  CaseLog log(suite.folder);
  SuiteProgress progress(counted, kept.counts, Paint(options.color, STDOUT_FILENO));
  double next = Now() + kResultsSeconds;
  bool changed = false;
  const SuiteRunner::Listener listener = {
      .ended =
          [&](size_t at, const Json& record) {
            LeaveScratch(suite, at);
            if (!suite.cases[at].counted) return;
            log.Append(record);
            progress.Ended(record);
            changed = true;
          },
      .tick =
          [&] {
            progress.Show();
            if (!changed || Now() < next) return;
            const double start = Now();
            WriteResults(SuiteJournal(suite.folder), suite.folder);
            // Of a long suite the results take long to write;
            // that is a small part of the time.
            next = Now() + std::max(kResultsSeconds, 20 * (Now() - start));
            changed = false;
          }};
  return SuiteRunner(suite, kept.cases, Jobs(options.jobs), signals, listener).Run();
}

// The folders of the results, of which the workspaces are made case by case.
void MakeFolders(const std::string& folder) {
  for (const char* const name : {"/cases", "/reports"}) {
    std::error_code error;
    fs::create_directories(folder + name, error);
    if (error) throw UsageError{"cannot make the folder " + folder + name + ": " + error.message()};
  }
}

}  // namespace

int RunSuite(const SuiteOptions& options) {
  FindEngine(options.engine);  // Before anything else is done, and for all cases.
  const Selection selection = SelectCases(options);
  if (options.dryRun) return PrintResults(DryRun(selection));
  const CaseOrder order(selection.cases);
  std::optional<Scratch> scratch;
  if (!options.scratch.empty()) scratch.emplace(options.scratch);
  const SuiteFolder folder(options.out, options.resume);
  MakeFolders(folder.path());
  RemoveIncoming(folder.path());
  const SuitePlace suite = {selection.cases, order,
                            folder.path(),   OriginText(FindEngine(options.engine)),
                            options.demo,    scratch ? scratch->path() : ""};

  NewLines lines = NewLines::ForCases(folder.path());
  Kept kept =
      folder.resumed() ? FindKept(suite, lines) : Kept{std::vector<bool>(suite.cases.size()), {}};
  LeaveOutUnneeded(suite, kept.cases);
  WritePlan(folder.path(), options, selection);
  lines.Publish();
  const auto counted = std::count_if(selection.cases.begin(), selection.cases.end(),
                                     [](const SuiteCase& one) { return one.counted; });
  const int interruption = RunCases(suite, options, kept, static_cast<size_t>(counted));
  scratch.reset();
  RemoveIncoming(folder.path());
  const SuiteJournal journal(folder.path());
  WriteResults(journal, folder.path());
  const int printed =
      PrintResults(SuiteSummary(journal, folder.path(), Paint(options.color, STDOUT_FILENO)));
  if (interruption != 0) {
    fflush(nullptr);
    raise(interruption);  // Who has interrupted the suite wants to see its end.
    return exit_code::kSignal + interruption;
  }
  const int exitCode = journal.counts().ExitCode();
  const int ended = options.ended ? options.ended(folder.path()) : exit_code::kPass;
  if (exitCode != exit_code::kPass) return exitCode;
  return printed != exit_code::kPass ? printed : ended;
}

}  // namespace host
