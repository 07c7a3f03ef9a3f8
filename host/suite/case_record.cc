#include "suite/case_record.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "base/exit_code.h"
#include "base/printable.h"
#include "catalogue/catalogue_text.h"
#include "files/sha256.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr size_t kTailLines = 20;
constexpr std::streamoff kTailBytes = 4096;

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

std::string GroupOf(const SuiteCase& one) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.declared.words.name == one.routine) return std::string(GroupWord(row.group));
  }
  return "";
}

// The number that a figure of a report holds; null when it has none.
Json Number(const Json& report, const char* key) {
  return report.contains(key) ? report[key].value("value", Json()) : Json();
}

Json ListOf(const Json& report, const char* key) {
  return report.contains(key) && report[key].is_array() ? report[key] : Json::array();
}

// Real-time factor by CPU time: what the machine did meanwhile is left out.
Json FactorByCpu(const Json& report) {
  const Json factor = Number(report, "rtf");
  const Json cpu = Number(report, "cpu");
  const Json elapsed = Number(report, "elapsed");
  if (!factor.is_number() || !cpu.is_number() || !elapsed.is_number()) return {};
  const double seconds = elapsed.get<double>();
  return seconds > 0 ? Json(factor.get<double>() * cpu.get<double>() / seconds) : Json();
}

Json Digest(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return {};
  const FileDigest digest = DigestOf(file, [] { return true; });
  close(file);
  return TextOrNull(digest.digest);
}

// What the report says, or else the file.
Json DigestOf(const Json& output, const std::string& path) {
  const Json told = output.value("sha256", Json::object());
  const Json digest = told.is_object() ? told.value("value", Json()) : Json();
  return digest.is_string() ? digest : Digest(path);
}

// The outputs that are there.
Json OutputsOf(const Json& report, const std::string& folder) {
  Json outputs = Json::array();
  for (const Json& output : ListOf(report, "outputs")) {
    const std::string path = output.value("path", "");
    std::error_code error;
    if (path.empty() || !fs::is_regular_file(path, error)) continue;
    outputs.push_back({{"name", output.value("name", "")},
                       {"path", fs::path(path).lexically_relative(folder).string()},
                       {"sha256", DigestOf(output, path)}});
  }
  return outputs;
}

// The text with its paths relative to the folder. The end of a longer name is no such folder.
std::string Within(const std::string& folder, std::string text) {
  const std::string start = folder + "/";
  for (size_t at = 0; (at = text.find(start, at)) != std::string::npos;) {
    const char before = at == 0 ? ' ' : text[at - 1];
    if (before == ' ' || before == '(' || before == '"' || before == '\'') {
      text.erase(at, start.size());
    } else {
      at += start.size();
    }
  }
  return text;
}

// The last lines of a text file, as readers may see them.
std::string Tail(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return "";
  const std::streamoff size = file.tellg();
  const bool whole = size <= kTailBytes;
  file.seekg(whole ? 0 : size - kTailBytes);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(Printable(line));
  if (!whole && !lines.empty()) lines.erase(lines.begin());
  std::string text;
  for (size_t i = lines.size() - std::min(lines.size(), kTailLines); i < lines.size(); ++i) {
    text += lines[i] + "\n";
  }
  return text;
}

}  // namespace

Json NotRunRecord(const SuiteCase& one) {
  return {{"id", one.id},
          {"index", one.index},
          {"routine", one.routine},
          {"arguments", one.arguments},
          {"group", GroupOf(one)},
          {"tags", one.tags},
          {"known", TextOrNull(one.known)},
          {"cluster", TextOrNull(one.cluster)},
          {"verdict", "not_run"},
          {"exit_code", Json()},
          {"cause", "not_run"},
          {"reason", "the suite ended before it"},
          {"report", ""},
          {"elapsed", Json()},
          {"cpu", Json()},
          {"rtf", Json()},
          {"rtf_cpu", Json()},
          {"results", Json::array()},
          {"guards", Json::array()},
          {"figures", Json::array()},
          {"outputs", Json::array()}};
}

Json UnrunRecord(const SuiteCase& one, const std::string& verdict, int exitCode,
                 const std::string& cause, const std::string& reason) {
  Json record = NotRunRecord(one);
  record["verdict"] = verdict;
  record["exit_code"] = exitCode;
  record["cause"] = cause;
  record["reason"] = reason;
  return record;
}

Json EndedRecord(const SuiteCase& one, const std::string& folder, const std::string& reportPath,
                 const Json& report) {
  Json record = NotRunRecord(one);
  for (const char* const key : {"verdict", "exit_code", "cause", "reason"}) {
    record[key] = report.value(key, record[key]);
  }
  record["reason"] = Within(folder, record["reason"]);
  record["report"] = fs::path(reportPath).lexically_relative(folder).string();
  for (const char* const key : {"elapsed", "cpu", "rtf"}) record[key] = Number(report, key);
  record["rtf_cpu"] = FactorByCpu(report);
  for (const char* const key : {"results", "guards", "figures"}) record[key] = ListOf(report, key);
  record["outputs"] = OutputsOf(report, folder);
  if (record["verdict"] != "pass") record[kLogTailKey] = Tail(report.value("log", ""));
  return record;
}

void FailRecord(Json& record, const std::string& cause, const std::string& reason) {
  record["verdict"] = "fail";
  record["exit_code"] = exit_code::kFail;
  record["cause"] = cause;
  record["reason"] = reason;
}

bool IsKnownFailure(const Json& record) {
  const std::string verdict = record.value("verdict", "");
  return !record["known"].is_null() && (verdict == "fail" || verdict == "error");
}

bool HasOutputs(const Json& record) {
  const std::string verdict = record.value("verdict", "");
  return verdict == "pass" || verdict == "warn" || IsKnownFailure(record);
}

}  // namespace host
