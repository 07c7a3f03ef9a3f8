#include "report_page/case_report.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "base/printable.h"
#include "files/regular_file.h"
#include "report_page/json_values.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxReportBytes = size_t{64} << 20;
constexpr size_t kMaxLogBytes = size_t{16} << 20;
constexpr size_t kTailLines = 20;
constexpr size_t kMaxLineBytes = 400;

Json Parsed(const std::string& path) {
  const TextRead read = ReadText(path, kMaxReportBytes, [] { return true; });
  if (!read.fault.empty()) return Json::object();
  Json json = Json::parse(read.text, nullptr, false);
  return json.is_object() ? json : Json::object();
}

Json EntryWhere(const Json& report, const char* list, const char* key, const std::string& value) {
  for (const Json& each : ListOf(report, list)) {
    if (TextOf(each, key) == value) return each;
  }
  return Json::object();
}

}  // namespace

CaseReport::CaseReport(const Json& record, const std::string& folder, const Json& header) {
  if (!header.is_null()) {
    m_report = header;
    return;
  }
  const std::string report = TextOf(record, "report");
  if (report.empty()) return;
  m_report = Parsed((fs::path(folder) / report).string());
  m_workspace = (fs::path(folder) / "cases" / TextOf(record, "id")).string();
}

std::string CaseReport::PathOf(const std::string& path) const {
  if (path.empty()) return "";
  const std::string start = TextOf(m_report, "workspace") + "/";
  if (!m_workspace.empty() && path.starts_with(start)) {
    return m_workspace + "/" + path.substr(start.size());
  }
  return (fs::path(TextOf(m_report, "directory")) / path).string();
}

Json CaseReport::Output(const std::string& name) const {
  return EntryWhere(m_report, "outputs", "name", name);
}

Json CaseReport::Input(const std::string& path) const {
  return EntryWhere(m_report, "inputs", "path", path);
}

MeasuredSource CaseReport::Source(const std::string& path, const Json& entry) const {
  MeasuredSource source = {.path = path};
  const auto rate = FactNumber(entry, "rate");
  const auto channels = FactNumber(entry, "channel_count");
  if (TextOf(entry, "container") != "headerless" || !rate || !channels) return source;
  if (*rate < 1 || *channels < 1) return source;
  const bool floats = FactText(entry, "samples") == "float32";
  source.raw =
      RawForm{.rate = static_cast<int>(std::clamp<double>(*rate, 0, kMaxRate)),
              .channels = static_cast<int>(std::clamp<double>(*channels, 0, kMaxRecordedChannels)),
              .samples = floats ? RawForm::Samples::kF32 : RawForm::Samples::kS16};
  return source;
}

std::string CaseReport::LogTail() const {
  const std::string path = PathOf(TextOf(m_report, "log"));
  if (path.empty()) return "";
  const TextRead read = ReadText(path, kMaxLogBytes, [] { return true; });
  std::vector<std::string> lines;
  std::istringstream stream(read.text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(Printable(line.substr(0, kMaxLineBytes)));
  }
  std::string tail;
  for (size_t i = lines.size() - std::min(lines.size(), kTailLines); i < lines.size(); ++i) {
    tail += lines[i] + "\n";
  }
  return tail;
}

}  // namespace host
