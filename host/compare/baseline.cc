#include "compare/baseline.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <vector>

#include "base/aligned_table.h"
#include "base/counted.h"
#include "base/exit_code.h"
#include "base/json_parts.h"
#include "base/printable.h"
#include "base/suggest.h"
#include "base/usage_error.h"
#include "base/user_folder.h"
#include "compare/read_results.h"
#include "files/whole_file.h"
#include "report/output.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr const char* kEnding = ".json";

fs::path Folder() {
  const std::string folder = UserFolder("XDG_DATA_HOME", ".local/share");
  if (!folder.empty()) return fs::path(folder) / "audio_bench/baselines";
  throw UsageError{"there is no folder for baselines: neither XDG_DATA_HOME nor HOME is set"};
}

std::vector<std::string> Names() {
  std::vector<std::string> names;
  std::error_code error;
  for (const fs::directory_entry& each : fs::directory_iterator(Folder(), error)) {
    if (each.path().extension() == kEnding) names.push_back(each.path().stem());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// The file of a baseline that is there.
std::string Existing(const std::string& name) {
  std::string path = BaselinePath(name);
  std::error_code error;
  if (fs::exists(path, error)) return path;
  const std::vector<std::string> names = Names();
  const std::vector<std::string_view> views(names.begin(), names.end());
  const auto alike = NamesAlike(name, views);
  throw UsageError{"there is no baseline " + name +
                   (alike.empty() ? "" : "; did you mean " + std::string(alike.front()) + "?")};
}

Json NumberOrNull(double value) { return std::isnan(value) ? Json() : Json(value); }

Json FileJson(const ResultSet& set, int number) {
  return number == TextTable::kNone ? Json() : Json(set.texts.Text(number));
}

Json FigureJson(const ResultSet& set, const ComparedFigure& figure) {
  const MeasureKind& kind = set.kinds[static_cast<size_t>(figure.kind)];
  Json json = {{"name", kind.name},
               {"value", NumberOrNull(figure.value)},
               {"unit", kind.unit},
               {"better", kind.better},
               {"file", FileJson(set, figure.file)}};
  if (figure.channel != TextTable::kNone) json["channel"] = figure.channel;
  if (kind.version > 0) json["version"] = kind.version;
  if (!std::isnan(figure.truth)) json["truth"] = figure.truth;
  return json;
}

Json CaseJson(const ResultSet& set, const ComparedCase& one) {
  Json json = {{"id", one.id},
               {"routine", one.routine},
               {"arguments", one.arguments},
               {"cluster", one.cluster.empty() ? Json() : Json(one.cluster)},
               {"verdict", one.verdict},
               {"elapsed", NumberOrNull(one.elapsed)},
               {"cpu", NumberOrNull(one.cpu)},
               {"figures", Json::array()},
               {"guards", Json::array()},
               {"outputs", Json::array()}};
  for (const ComparedFigure& each : one.figures) json["figures"].push_back(FigureJson(set, each));
  for (const ComparedGuard& each : one.guards) {
    json["guards"].push_back(
        {{"name", set.texts.Text(each.name)}, {"file", FileJson(set, each.file)}});
  }
  for (const ComparedOutput& each : one.outputs) {
    const Json digest = each.sha256.empty() ? Json() : Json(each.sha256);
    json["outputs"].push_back({{"name", set.texts.Text(each.name)}, {"sha256", digest}});
  }
  return json;
}

std::string Line(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

int Save(const BaselineOptions& options) {
  const std::string path = BaselinePath(options.name);
  const ResultSet set = ReadResultSet(options.path);
  std::error_code error;
  fs::create_directories(fs::path(path).parent_path(), error);
  if (error) {
    throw UsageError{"cannot make the folder of " + path + ": " + error.message()};
  }
  WriteBaseline(set, path);
  return PrintResults("baseline " + options.name + ": " + Counted(set.cases.size(), "case") +
                      " of " + Printable(options.path) + "\n");
}

int List() {
  const std::vector<std::string> names = Names();
  if (names.empty()) return PrintResults("no baselines in " + Folder().string() + "\n");
  AlignedTable table({"baseline", "cases", "engine", "started", "suite"});
  for (const std::string& name : names) {
    try {
      const ResultSet set = ReadResultSet(BaselinePath(name));
      table.Add({name, std::to_string(set.cases.size()), set.origin.engine, set.origin.started,
                 set.origin.suite});
    } catch (const UsageError& error) {
      table.Add({name, "-", "cannot be read: " + error.message, "", ""});
    }
  }
  return PrintResults(table.Text());
}

int Show(const std::string& name) {
  const std::string path = Existing(name);
  const ResultSet set = ReadResultSet(path);
  std::string text = "baseline  " + Printable(name) + "\nfile      " + Printable(path) +
                     "\nsuite     " + Printable(set.origin.suite) + "\nengine    " +
                     Printable(set.origin.engine) + "\nstarted   " + Printable(set.origin.started) +
                     "\n\n";
  AlignedTable table({"case", "verdict", "figures", "files"});
  for (const ComparedCase& one : set.cases) {
    table.Add({one.id, one.verdict, std::to_string(one.figures.size()),
               std::to_string(one.outputs.size())});
  }
  return PrintResults(text + table.Text());
}

int Remove(const std::string& name) {
  const std::string path = Existing(name);
  std::error_code error;
  fs::remove(path, error);
  if (error) throw UsageError{"cannot remove " + path + ": " + error.message()};
  return exit_code::kPass;
}

int Export(const BaselineOptions& options) {
  std::error_code error;
  const bool results = fs::exists(options.name, error);
  WriteBaseline(ReadResultSet(results ? options.name : Existing(options.name)), options.path);
  return exit_code::kPass;
}

}  // namespace

std::string BaselinePath(const std::string& name) {
  constexpr size_t kMaxNameBytes = 200;
  const bool control = std::any_of(name.begin(), name.end(),
                                   [](unsigned char byte) { return byte < ' ' || byte == 127; });
  if (name.empty() || name.size() > kMaxNameBytes || control || name.starts_with('.') ||
      name.find('/') != std::string::npos) {
    throw UsageError{"\"" + name +
                     "\" is no name of a baseline: it is empty or longer than 200 bytes, begins "
                     "with a dot, or holds / or a control character"};
  }
  return (Folder() / (name + kEnding)).string();
}

std::string PlaceOfResults(const std::string& name) {
  const std::string_view prefix = kBaselinePrefix;
  return name.starts_with(prefix) ? BaselinePath(name.substr(prefix.size())) : name;
}

std::string ExistingResults(const std::string& name) {
  std::string place = PlaceOfResults(name);
  std::error_code error;
  if (place != name && !fs::exists(place, error)) {
    throw UsageError{"there is no " + name + " (audio_bench baseline list)"};
  }
  return place;
}

std::string BaselineText(const ResultSet& set) {
  Json margins = Json::object();
  for (const auto& [name, margin] : set.margins) margins[name] = margin;
  const Json suite = set.origin.suite.empty() ? Json() : Json(set.origin.suite);
  std::string text = "{\"schema_version\": 1,\n\"suite\": " + Line(suite) +
                     ",\n\"engine\": " + Line({{"name", set.origin.engine}}) +
                     ",\n\"started\": " + Line(set.origin.started) +
                     ",\n\"margins\": " + Line(margins) + ",\n\"cases\": [";
  for (const ComparedCase& one : set.cases) {
    text += (&one == &set.cases.front() ? "\n" : ",\n") + Line(CaseJson(set, one));
  }
  return text + "\n]}\n";
}

void WriteBaseline(const ResultSet& set, const std::string& path) {
  if (set.origin.report) {
    throw UsageError{set.origin.path + " is the report of one run; a baseline is made of a suite"};
  }
  const std::string target = FollowLinks(path);
  if (!target.empty() && ReplaceFile(target, 0644, BaselineText(set))) return;
  throw UsageError{"cannot write " + path + ": " + strerror(errno)};
}

int ManageBaselines(const BaselineOptions& options) {
  switch (options.action) {
    case BaselineOptions::Action::kSave:
      return Save(options);
    case BaselineOptions::Action::kList:
      return List();
    case BaselineOptions::Action::kShow:
      return Show(options.name);
    case BaselineOptions::Action::kRemove:
      return Remove(options.name);
    case BaselineOptions::Action::kExport:
      break;
  }
  return Export(options);
}

}  // namespace host
