#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "base/aligned_table.h"
#include "base/json_parts.h"
#include "controls/control_findings.h"

namespace host {

namespace {

constexpr int kControlsSchema = 1;

std::string Short(double number) {
  std::array<char, 32> text = {};
  const auto [end, error] =
      std::to_chars(text.begin(), text.end(), number, std::chars_format::general, 3);
  return {text.begin(), end};
}

// "gain 0.1 dB" for a measure, the difference being that of the means.
std::string MeasureText(const MeasureComparison& measure) {
  const std::string unit = measure.kind.unit.empty() ? "" : " " + measure.kind.unit;
  return measure.kind.name + " " + (measure.difference > 0 ? "+" : "") + Short(measure.difference) +
         unit;
}

std::string FindingsText(const ControlFindings& findings) {
  if (!findings.Found()) return "nothing";
  std::string text;
  for (const std::string& guard : findings.guards) text += ", guard " + guard;
  for (const MeasureComparison& measure : findings.measures) text += ", " + MeasureText(measure);
  return text.substr(2);
}

bool Finds(const ControlFindings& findings, bool guard, const std::string& name) {
  const auto& guards = findings.guards;
  if (guard) return std::find(guards.begin(), guards.end(), name) != guards.end();
  return std::any_of(findings.measures.begin(), findings.measures.end(),
                     [&](const MeasureComparison& measure) { return measure.kind.name == name; });
}

// The guards or the measures that have found something, by name.
std::set<std::string> Finders(const std::vector<ControlResult>& results, bool guards) {
  std::set<std::string> names;
  for (const ControlResult& result : results) {
    for (const ControlFindings& findings : result.sounds) {
      if (guards) names.insert(findings.guards.begin(), findings.guards.end());
      if (guards) continue;
      for (const MeasureComparison& measure : findings.measures) names.insert(measure.kind.name);
    }
  }
  return names;
}

// The first letters of the kinds of sound on which a name has found a fault: "sm".
std::string Cell(const ControlResult& result, bool guard, const std::string& name) {
  std::string cell;
  for (const ControlFindings& findings : result.sounds) {
    if (Finds(findings, guard, name)) cell += findings.sound.front();
  }
  return cell.empty() ? "." : cell;
}

// A row for each guard and measure that has found something, a column for each engine.
std::string Matrix(const std::vector<ControlResult>& results) {
  std::vector<std::string> heads = {"found by"};
  for (size_t i = 0; i < results.size(); ++i) heads.push_back(std::to_string(i + 1));
  AlignedTable table(heads);
  for (const bool guards : {true, false}) {
    for (const std::string& name : Finders(results, guards)) {
      std::vector<std::string> row = {(guards ? "guard " : "") + name};
      for (const ControlResult& result : results) row.push_back(Cell(result, guards, name));
      table.Add(std::move(row));
    }
  }
  return table.Text();
}

Json FindingsJson(const ControlFindings& findings) {
  Json json = {{"sound", findings.sound}, {"guards", findings.guards}};
  json["measures"] = Json::array();
  for (const MeasureComparison& measure : findings.measures) {
    json["measures"].push_back({{"name", measure.kind.name},
                                {"unit", measure.kind.unit},
                                {"a", measure.a},
                                {"b", measure.b},
                                {"difference", measure.difference}});
  }
  return json;
}

}  // namespace

bool ControlResult::Right() const {
  return std::all_of(sounds.begin(), sounds.end(), [this](const ControlFindings& findings) {
    return findings.Found() != fault->clean;
  });
}

bool AllRight(const std::vector<ControlResult>& results) {
  return std::all_of(results.begin(), results.end(),
                     [](const ControlResult& result) { return result.Right(); });
}

std::vector<std::string> Idle(const std::vector<ControlResult>& results) {
  std::set<std::string> names;
  for (const ControlResult& result : results) {
    for (const ControlFindings& findings : result.sounds) {
      names.insert(findings.compared.begin(), findings.compared.end());
    }
  }
  for (const std::string& name : Finders(results, false)) names.erase(name);
  return {names.begin(), names.end()};
}

std::string ControlsText(const std::vector<ControlResult>& results) {
  std::string text;
  size_t wrong = 0;
  for (size_t i = 0; i < results.size(); ++i) {
    const ControlResult& result = results[i];
    text += std::to_string(i + 1) + "  " + std::string(result.fault->name) + ": " +
            std::string(result.fault->what) + (result.Right() ? "" : "  WRONG") + "\n";
    for (const ControlFindings& findings : result.sounds) {
      text += "    " + std::string(findings.sound) + ": " + FindingsText(findings) + "\n";
    }
    wrong += result.Right() ? 0 : 1;
  }
  text += "\n" + Matrix(results) + "s: found on speech, m: on music\n";
  std::string idle;
  for (const std::string& name : Idle(results)) idle += (idle.empty() ? "" : ", ") + name;
  if (!idle.empty()) text += "has found nothing: " + idle + "\n";
  if (wrong > 0) return text + "fail: " + std::to_string(wrong) + " are not as they should be\n";
  return text + "pass: every fault is found, and the clean engine by nothing\n";
}

std::string ControlsJson(const std::vector<ControlResult>& results) {
  Json json = {{"schema_version", kControlsSchema},
               {"verdict", AllRight(results) ? "pass" : "fail"},
               {"pieces", kControlPieces}};
  json["engines"] = Json::array();
  for (const ControlResult& result : results) {
    Json engine = {{"name", result.fault->name},
                   {"what", result.fault->what},
                   {"clean", result.fault->clean},
                   {"right", result.Right()}};
    engine["found"] = Json::array();
    for (const ControlFindings& findings : result.sounds) {
      engine["found"].push_back(FindingsJson(findings));
    }
    json["engines"].push_back(std::move(engine));
  }
  json["idle"] = Idle(results);
  return JsonText(json);
}

}  // namespace host
