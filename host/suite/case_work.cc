#include "suite/case_work.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "measure/figure_trust.h"
#include "report/libraries.h"
#include "run/run.h"
#include "suite/case_record.h"
#include "suite/scratch.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// What this process prints goes to a file from now on.
void PrintTo(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
  if (file < 0) throw UsageError{"cannot write " + path + ": " + strerror(errno)};
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  close(file);
}

Json ReadReport(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Json::parse(file, nullptr, false);
}

// An empty folder.
void MakeWorkspace(const std::string& path) {
  std::error_code error;
  fs::remove_all(path, error);
  if (!error) fs::create_directories(path, error);
  if (error) throw UsageError{"cannot make the folder " + path + ": " + error.message()};
}

// Copies the outputs of another case to the same places in this one's workspace.
void TakeOutputs(const std::string& report, const std::string& from, const std::string& to) {
  const Json earlier = ReadReport(report);
  if (!earlier.is_object()) throw UsageError{"cannot read " + report};
  for (const Json& output : earlier["outputs"]) {
    const std::string path = output.value("path", "");
    std::error_code error;
    if (path.empty() || !fs::is_regular_file(path, error)) continue;
    const fs::path target = fs::path(to) / fs::path(path).lexically_relative(from);
    fs::create_directories(target.parent_path(), error);
    fs::copy_file(path, target, fs::copy_options::overwrite_existing, error);
    if (error) throw UsageError{"cannot copy " + path + ": " + error.message()};
  }
}

// The first output that differs from the same one of the case whose outputs it must equal; empty
// when none does.
std::string Difference(const Json& record, const Json& first) {
  const auto digests = [](const Json& from) {
    Json digests = Json::object();
    for (const Json& output : from["outputs"]) {
      digests[output.value("name", "")] = output.value("sha256", Json());
    }
    return digests;
  };
  const Json here = digests(record);
  const Json there = digests(first);
  for (const auto& [name, digest] : there.items()) {
    if (!here.contains(name)) return name + " is not there";
    if (digest.is_null() || here[name] != digest) return name + " differs";
  }
  for (const auto& [name, digest] : here.items()) {
    if (!there.contains(name)) return name + " is only here";
  }
  return "";
}

// A case that must equal another one and does not fails, whatever else it is.
void CheckSameBytes(const SuitePlace& suite, const SuiteCase& one, Json& record) {
  if (one.sameAs.empty() || !HasOutputs(record)) return;
  const SuiteCase& first = suite.cases[suite.order.Find(one.sameAs)];
  const Json earlier =
      EndedRecord(first, suite.folder, suite.Report(first.id), ReadReport(suite.Report(first.id)));
  const std::string difference = Difference(record, earlier);
  if (difference.empty()) return;
  FailRecord(record, "not_same_bytes",
             difference + " (same_bytes, compared with " + first.id + ")");
}

// A routine of the catalogue that has no recording to run on is skipped.
void SkipWithoutDemo(const SuiteCase& one, Json& record) {
  if (!one.demo || record["cause"] != "missing_input") return;
  record["verdict"] = "skip";
  record["exit_code"] = exit_code::kSkip;
  record["reason"] = "no recording to run on: " + record.value("reason", "");
}

// A warning is a failure where that is asked for.
void BeStrict(const SuiteCase& one, Json& record) {
  if (!one.strict || record["verdict"] != "warn") return;
  FailRecord(record, "guard", record.value("reason", ""));
}

// Runs the case in its workspace, among the results or in the scratch folder.
void RunInPlace(const SuitePlace& suite, const SuiteCase& one) {
  SuitePlace here = suite;
  if (!suite.scratch.empty()) {
    here.folder = suite.scratch;
    std::error_code ignored;
    fs::remove_all(suite.Workspace(one.id), ignored);
  }
  MakeWorkspace(here.Workspace(one.id));
  for (const std::string& id : one.after) {
    TakeOutputs(suite.Report(id), suite.Workspace(id), here.Workspace(one.id));
  }
  if (one.demo && suite.demo.place) {
    suite.demo.place(FindRow(one.routine), here.Workspace(one.id));
  }
  // The report is among the results at once: it tells of a scratch folder that is full.
  Run(RunOf(one, here.Workspace(one.id), suite.Report(one.id)));
  if (suite.scratch.empty()) return;
  try {
    Homecoming{suite.scratch, suite.folder, one.id}.Bring();
  } catch (const UsageError&) {
    fs::remove(suite.Report(one.id));  // It tells of files that are not there.
    throw;
  }
}

void Print(const std::string& message) {
  fprintf(stderr, "audio_bench: %s\n", Printable(message).c_str());
}

}  // namespace

void FindCommonFacts() {
  LoadedLibraries();
  IsUntrusted("rtf");  // Makes the controls, by which trust in any figure is told.
}

Json RunOneCase(const SuitePlace& suite, size_t at) {
  const SuiteCase& one = suite.cases[at];
  PrintTo(suite.Output(one.id));
  std::error_code ignored;
  fs::remove(suite.Report(one.id), ignored);
  const std::string fingerprint = CaseFingerprint(suite, at);
  Json record;
  try {
    RunInPlace(suite, one);
  } catch (const UsageError& error) {
    Print(error.message);
    record = UnrunRecord(one, "error", exit_code::kUsage, "usage", error.message);
  } catch (const std::exception& error) {
    Print(error.what());
    record = UnrunRecord(one, "error", exit_code::kUsage, "usage", error.what());
  }
  const std::string path = suite.Report(one.id);
  if (const Json report = ReadReport(path); report.is_object()) {
    record = EndedRecord(one, suite.folder, path, report);
  }
  if (!record.is_object()) throw UsageError{"no report " + path};
  SkipWithoutDemo(one, record);
  CheckSameBytes(suite, one, record);
  BeStrict(one, record);
  record[kFingerprintKey] = fingerprint;
  return record;
}

}  // namespace host
