#include "report_page/case_data.h"

#include <algorithm>
#include <map>
#include <utility>

#include "report_page/guard_text.h"
#include "report_page/json_values.h"

namespace host {

namespace {

// Results and figures stand in the case in this order, and so does what is known of their changes.
class FigureList {
 public:
  explicit FigureList(const PageCase& one) : m_one(one) {}

  Json Take(const char* list, std::initializer_list<const char*> keys) {
    Json json = Json::array();
    for (const Json& each : ListOf(m_one.record, list)) {
      Json figure = Json::object();
      for (const char* const key : keys) figure[key] = ValueOf(each, key);
      const std::vector<FigureChange>& all = m_one.change.figures;
      const FigureChange& change = m_at < all.size() ? all[m_at] : m_none;
      figure["against"] = change.against ? Json(*change.against) : Json();
      figure["change"] = change.change ? Json(ChangeName(*change.change)) : Json();
      json.push_back(std::move(figure));
      ++m_at;
    }
    return json;
  }

 private:
  const PageCase& m_one;
  FigureChange m_none = {};
  size_t m_at = 0;
};

Json GuardsData(const PageCase& one, const CaseReport& report) {
  Json json = Json::array();
  for (const Json& guard : ListOf(one.record, "guards")) {
    const Json file = report.Output(TextOf(guard, "file"));
    json.push_back({{"name", TextOf(guard, "name")},
                    {"file", TextOrNull(TextOf(guard, "file"))},
                    {"at", ValueOf(guard, "at")},
                    {"channel", ValueOf(guard, "channel")},
                    {"fails", FlagOf(guard, "fails")},
                    {"new", IsNewGuard(one, guard)},
                    {"text", GuardSentence(guard, FactNumber(file, "channel_count"))}});
  }
  return json;
}

// The parts that inputs have in the figures of the outputs, by their paths.
std::map<std::string, std::string> RolesOf(const Json& report) {
  std::map<std::string, std::string> roles;
  for (const Json& output : ListOf(report, "outputs")) {
    const Json& against = ValueOf(output, "measured_against");
    for (const char* const role : {"input", "far", "near", "reference"}) {
      if (std::string path = TextOf(against, role); !path.empty()) {
        roles.try_emplace(std::move(path), role);
      }
    }
  }
  return roles;
}

// `entry` is that of a report, where there is one.
Json FileData(const std::string& name, const std::string& role, const Json& sha256,
              const std::string& path, const Json& entry) {
  const auto channels = FactNumber(entry, "channel_count");
  return {{"name", name},
          {"role", role},
          {"sha256", sha256},
          {"path", path},
          {"channels", channels ? Json(*channels) : Json()}};
}

// Inputs, outputs, and what else was measured against.
Json FilesData(const Json& record, const CaseReport& of) {
  const Json& report = of.json();
  Json files = Json::array();
  std::map<std::string, std::string> roles = RolesOf(report);
  for (const Json& input : ListOf(report, "inputs")) {
    const std::string path = TextOf(input, "path");
    const auto role = roles.find(path);
    files.push_back(FileData(TextOf(input, "name"), role == roles.end() ? "input" : role->second,
                             TextOrNull(FactText(input, "sha256")), path, input));
    if (role != roles.end()) roles.erase(role);
  }
  for (const auto& [path, role] : roles) {
    files.push_back(FileData(path.substr(path.find_last_of('/') + 1), role, Json(), path, Json()));
  }
  for (const Json& output : ListOf(record, "outputs")) {
    const std::string name = TextOf(output, "name");
    files.push_back(FileData(name, "output", ValueOf(output, "sha256"), TextOf(output, "path"),
                             of.Output(name)));
  }
  return files;
}

}  // namespace

bool IsNewGuard(const PageCase& one, const Json& guard) {
  const std::pair<std::string, std::string> key = {TextOf(guard, "name"), TextOf(guard, "file")};
  const auto found = std::ranges::find(one.guards, key);
  const auto at = static_cast<size_t>(found - one.guards.begin());
  return at < one.change.newGuards.size() && one.change.newGuards[at];
}

Json CaseData(const PageCase& one, const CaseReport& report) {
  const Json& record = one.record;
  Json data = Json::object();
  for (const char* const key : {"id", "routine", "group"}) data[key] = TextOf(record, key);
  data["tags"] = TextsOf(record, "tags");
  for (const char* const key : {"known", "cluster"}) data[key] = TextOrNull(TextOf(record, key));
  data["arguments"] = TextsOf(record, "arguments");
  for (const char* const key : {"verdict", "cause", "reason"}) data[key] = TextOf(record, key);
  data["change"] = TextOrNull(one.change.word);
  data["against_verdict"] = TextOrNull(one.change.verdict);
  for (const char* const key : {"elapsed", "cpu", "rtf"}) data[key] = ValueOf(record, key);
  FigureList figures(one);
  data["results"] = figures.Take("results", {"name", "value", "unit", "better", "file", "reason"});
  data["guards"] = GuardsData(one, report);
  data["figures"] = figures.Take(
      "figures", {"file", "channel", "name", "value", "unit", "better", "reason", "untrusted"});
  data["files"] = FilesData(record, report);
  data["players"] = Json::array();
  data["notes"] = Json::array();
  data["log"] = report.LogTail();
  data["command"] = CommandLineOf(TextsOf(report.json(), "command"));
  data["report"] = TextOf(record, "report");
  return data;
}

}  // namespace host
