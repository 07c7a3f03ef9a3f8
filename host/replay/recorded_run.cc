#include "replay/recorded_run.h"

#include <filesystem>
#include <system_error>

#include "files/regular_file.h"
#include "results/schema_versions.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxReportBytes = 100'000'000;

// The value of an object that may have none.
std::string ValueOf(const Json& object) {
  const Json value = object.value("value", Json());
  return value.is_string() ? value.get<std::string>() : "";
}

Json Parsed(const std::string& path) {
  const TextRead read = ReadText(path, kMaxReportBytes, [] { return true; });
  if (!read.fault.empty()) throw ReplayFault{"report " + path + " cannot be read: " + read.fault};
  Json report = Json::parse(read.text, nullptr, false);
  if (!report.is_object() || !report.contains("schema_version")) {
    throw ReplayFault{path + " is no report of a run (audio_bench run --json)"};
  }
  const Json& version = report["schema_version"];
  if (version != kReportSchema || !report.contains("command")) {
    throw ReplayFault{"report " + path + " has schema version " + version.dump() +
                      " or lacks what is needed to run it again; this audio_bench reads version " +
                      std::to_string(kReportSchema)};
  }
  return report;
}

// The folder that was the workspace: where the report says, or, where the results of a suite have
// been moved since, beside the report.
fs::path Workspace(const Json& report, const std::string& path) {
  fs::path recorded = fs::path(report.at("directory").get<std::string>()) /
                      report.at("workspace").get<std::string>();
  std::error_code error;
  if (fs::is_directory(recorded, error)) return recorded;
  const fs::path own = fs::absolute(path, error).lexically_normal();
  for (fs::path folder = own.parent_path(); folder.has_relative_path();
       folder = folder.parent_path()) {
    if (folder.filename() != "reports") continue;
    fs::path moved =
        folder.parent_path() / "cases" / own.lexically_relative(folder).replace_extension();
    if (fs::is_directory(moved, error)) return moved;
  }
  return recorded;
}

std::vector<RecordedFile> FilesOf(const Json& files, const Json& report,
                                  const fs::path& workspace) {
  const fs::path before = report.at("workspace").get<std::string>();
  std::vector<RecordedFile> all;
  for (const Json& file : files) {
    RecordedFile one = {.name = file.at("name"), .digest = ValueOf(file.at("sha256"))};
    one.reason = file.at("sha256").value("reason", "");
    if (const std::string path = file.at("path"); !path.empty()) {
      one.place = fs::path(path).lexically_relative(before);
      one.path = workspace / one.place;
    }
    const Json staged = file.value("staged", Json::object()).value("value", Json());
    if (staged.is_object()) {
      one.source = staged.at("source");
      one.sourceDigest = staged.at("source_sha256");
    }
    all.push_back(std::move(one));
  }
  return all;
}

// From the causes of its problems.
std::string EndOf(const Json& report) {
  for (const Json& problem : report.at("problems")) {
    std::string cause = problem.at("cause");
    if (cause == "crash" || cause == "timeout") return cause;
  }
  return "";
}

RecordedRun FromReport(const std::string& path, Json report) {
  const std::string reason = report.at("reason");
  if (report.at("elapsed").at("value").is_null()) {
    throw ReplayFault{"the run in " + path + " did not take place: " + reason};
  }
  const fs::path workspace = Workspace(report, path);
  RecordedRun run = {.started = report.at("started"),
                     .routine = report.at("routine"),
                     .command = report.at("command"),
                     .end = EndOf(report),
                     .inputs = FilesOf(report.at("inputs"), report, workspace),
                     .outputs = FilesOf(report.at("outputs"), report, workspace)};
  for (const Json& guard : report.at("guards")) {
    run.appended = run.appended || guard.at("name") == "appended";
  }
  run.report = std::move(report);
  return run;
}

}  // namespace

std::string ReportFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) return path;
  fs::path own = fs::absolute(path, error).lexically_normal();
  if (!own.has_filename()) own = own.parent_path();
  for (fs::path folder = own.parent_path(); folder.has_relative_path();
       folder = folder.parent_path()) {
    if (folder.filename() != "cases") continue;
    const fs::path report =
        folder.parent_path() / "reports" / (own.lexically_relative(folder).string() + ".json");
    if (fs::is_regular_file(report, error)) return report;
  }
  throw ReplayFault{path + " is a folder, and not that of a case of a suite (DIR/cases/ID)"};
}

RecordedRun ReadRecordedRun(const std::string& path) {
  const std::string file = ReportFile(path);
  Json report = Parsed(file);
  try {
    return FromReport(file, std::move(report));
  } catch (const Json::exception&) {
    throw ReplayFault{file + " is no report of a run (audio_bench run --json)"};
  }
}

}  // namespace host
