#include "controls/controls.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>

#include "base/exit_code.h"
#include "base/suggest.h"
#include "base/usage_error.h"
#include "compare/bench_suites.h"
#include "compare/compare_results.h"
#include "compare/read_results.h"
#include "controls/control_findings.h"
#include "controls/control_material.h"
#include "engines/engine.h"
#include "files/temporary_workspace.h"
#include "process/limits.h"
#include "process/signals.h"
#include "report/output.h"
#include "report/result_file.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr double kPatience = 600;  // Seconds for the reader of a pipe.

// The folder of the engines that belong to this program: where both are installed, or built.
std::string OwnEngines() {
  const fs::path programs = fs::path(BuiltInEngine().path).parent_path();
  std::error_code error;
  const fs::path installed = programs / LIBRARIES_FROM_PROGRAMS / "audio_engine/controls";
  const fs::path built = programs.parent_path() / "audio_engine/controls";
  return fs::is_directory(installed, error) ? installed : built;
}

std::vector<const ControlFault*> Chosen(const std::vector<std::string>& names) {
  std::vector<const ControlFault*> chosen;
  std::vector<std::string_view> all;
  for (const ControlFault& fault : ControlFaults()) {
    all.push_back(fault.name);
    if (names.empty()) chosen.push_back(&fault);
  }
  for (const std::string& name : names) {
    const auto found = std::find(all.begin(), all.end(), name);
    if (found != all.end()) {
      chosen.push_back(&ControlFaults()[static_cast<size_t>(found - all.begin())]);
      continue;
    }
    const auto alike = NamesAlike(name, all);
    std::string message = "no control is called \"" + name + "\"";
    if (!alike.empty()) message += "; did you mean " + std::string(alike.front()) + "?";
    throw UsageError{message};
  }
  return chosen;
}

// The results of one kind of sound on a routine, or on all of them where none is named.
ResultSet Part(ResultSet set, std::string_view sound, std::string_view routine) {
  std::string start(sound);
  start += "-";
  start += routine;
  std::erase_if(set.cases, [&](const ComparedCase& one) { return !one.id.starts_with(start); });
  return set;
}

// The runs of all engines in one temporary folder, which goes with the object.
class ControlRuns {
 public:
  // `faults` are those that will be tried.
  ControlRuns(std::string engines, std::span<const ControlFault* const> faults)
      : m_engines(std::move(engines)) {
    // Says what is wrong with an engine before the work.
    for (const ControlFault* const fault : faults) FindEngine(EngineOf(*fault));
    WriteControlMaterial(m_place->path());
    const bool all = std::any_of(faults.begin(), faults.end(),
                                 [](const ControlFault* fault) { return fault->routine.empty(); });
    for (const ControlFault* const fault : faults) {
      const std::string_view routine = all ? "" : fault->routine;
      if (!m_clean.contains(routine)) m_clean.emplace(routine, Run(routine, ""));
    }
  }

  ControlResult Try(const ControlFault& fault) {
    fprintf(stderr, "%s ...\n", std::string(fault.name).c_str());
    const auto whole = m_clean.find("");
    const ResultSet& clean = (whole != m_clean.end() ? whole : m_clean.find(fault.routine))->second;
    const ResultSet after = Run(fault.routine, EngineOf(fault));
    ControlResult result = {&fault};
    for (const std::string_view sound : kControlSounds) {
      const ResultSet a = Part(clean, sound, fault.routine);
      result.sounds.push_back(Find(sound, CompareResults(a, Part(after, sound, ""), {})));
    }
    return result;
  }

 private:
  static ControlFindings Find(std::string_view sound, const Comparison& comparison) {
    ControlFindings findings = {sound};
    for (const NewGuard& guard : comparison.guards) findings.guards.push_back(guard.name);
    std::sort(findings.guards.begin(), findings.guards.end());
    const auto repeated = std::unique(findings.guards.begin(), findings.guards.end());
    findings.guards.erase(repeated, findings.guards.end());
    for (const MeasureComparison& measure : comparison.measures) {
      findings.compared.push_back(measure.kind.name);
      if (IsWorse(measure.verdict) && measure.holds) findings.measures.push_back(measure);
    }
    return findings;
  }

  // The word for --engine; empty for none.
  std::string EngineOf(const ControlFault& fault) const {
    if (fault.name == kDesktopEngine) return std::string(kDesktopEngine);
    return fault.clean ? "" : m_engines + "/lib" + std::string(fault.name) + ".so";
  }

  // Runs an engine on all cases of a routine, or on all there are where none is named.
  ResultSet Run(std::string_view routine, const std::string& engine) {
    const std::string folder = m_place->path() + "/run";
    std::vector<std::string> words = {m_place->path() + "/suite.toml"};
    if (!routine.empty()) words.push_back("*-" + std::string(routine) + "-*");
    const int interruption =
        RunSuiteBy({"/proc/self/exe", engine}, words, folder, PrintsTo::kNowhere);
    if (interruption != 0) {
      m_place.reset();
      raise(interruption);  // Who has interrupted it wants to see its end.
    }
    ResultSet set = ReadResultSet(folder);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    return set;
  }

  std::string m_engines;
  std::unique_ptr<TemporaryWorkspace> m_place = std::make_unique<TemporaryWorkspace>();
  std::map<std::string_view, ResultSet> m_clean;  // By routine; under no name all of them.
};

}  // namespace

int RunControls(const ControlOptions& options) {
  const std::vector<const ControlFault*> faults = Chosen(options.faults);
  std::optional<ResultFile> json;
  if (!options.json.empty()) json.emplace(options.json, Now() + kPatience);
  std::vector<ControlResult> results;
  {
    ControlRuns runs(options.engines.empty() ? OwnEngines() : options.engines, faults);
    for (const ControlFault* const fault : faults) results.push_back(runs.Try(*fault));
  }
  const int printed = PrintResults(ControlsText(results));
  if (json) {
    const HostSignals signals;
    Limits limits(signals, kPatience);
    const int written = json->Write(ControlsJson(results), limits);
    if (written != exit_code::kPass) return written;
  }
  if (printed != exit_code::kPass) return printed;
  return AllRight(results) ? exit_code::kPass : exit_code::kFail;
}

}  // namespace host
