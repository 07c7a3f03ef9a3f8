// Each routine of the bench without each of its inputs.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "report_schema.h"
#include "run/absence_table.h"
#include "run/run_fixture.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;

namespace fs = std::filesystem;

struct Line {
  std::string words;
  std::string missing;
  std::string outcome;  // "3 missing_input"
};

std::vector<Line> Table() {
  std::vector<Line> lines;
  std::istringstream text(kAbsenceTable);
  for (std::string line; std::getline(text, line);) {
    const size_t first = line.find(" | ");
    const size_t second = line.find(" | ", first + 1);
    if (first == std::string::npos) continue;
    lines.push_back({line.substr(0, first), line.substr(first + 3, second - first - 3),
                     line.substr(second + 3)});
  }
  return lines;
}

std::vector<std::string> Words(const std::string& line) {
  std::istringstream text(line);
  return {std::istream_iterator<std::string>(text), {}};
}

// The rows that can be run and read something, by name.
std::map<std::string, json> Rows() {
  std::map<std::string, json> rows;
  const json list = json::parse(RunProcess({AUDIO_BENCH, "list", "--json"}).out);
  for (const json& row : list["routines"]) {
    if (row["available"] && !row["inputs"].empty()) rows[row["routine"]] = row;
  }
  return rows;
}

// The inputs that have a name of their own, with the arguments filled in, and their declaration.
std::map<std::string, json> InputsOf(const json& row, const std::vector<std::string>& words) {
  std::map<std::string, json> inputs;
  for (const json& input : row["inputs"]) {
    if (!input["pattern"].is_null()) continue;
    std::string name = input["name"];
    for (size_t i = 0; i < row["parameters"].size(); ++i) {
      const std::string parameter = "{" + row["parameters"][i]["name"].get<std::string>() + "}";
      const size_t at = name.find(parameter);
      if (at != std::string::npos) name.replace(at, parameter.size(), words[i + 1]);
    }
    inputs[name] = input;
  }
  return inputs;
}

// Half a second of what a file is declared to be.
std::string Content(const std::string& container) {
  std::vector<short> samples(8000);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<short>(i * 7919 % 6000);
  if (container == "other") return "0 1 2 0 60\n";
  if (container == "headerless") return SampleBytes(samples);
  return WavBytes({.rate = 16000}, samples);
}

// Where the workspace has a file of that name.
std::string Place(std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  if (name.find(':') == 1)
    name = std::string(1, static_cast<char>(toupper(name[0]))) + name.substr(2);
  return name.starts_with('/') ? name.substr(1) : name;
}

class AbsenceTest : public RunTest {
 protected:
  json RunLine(const Line& line, const std::map<std::string, json>& inputs) {
    fs::remove_all("bench_work");
    if (line.missing != "all") {
      for (const auto& [name, input] : inputs) {
        if (name != line.missing) Put(Place(name), Content(input["container"]));
      }
    }
    std::vector<std::string> command = Words(line.words);
    command.insert(command.begin(), {AUDIO_BENCH, "run"});
    command.insert(command.end(), {"--json", "report.json"});
    const Finished run = RunProcess(command);
    json report = ParseReport(ReadFile("report.json"));
    EXPECT_EQ(report["exit_code"], run.exitCode);
    return report;
  }
};

TEST_F(AbsenceTest, EndsEachRunAsTheTableSays) {
  const std::map<std::string, json> rows = Rows();
  const std::vector<Line> table = Table();
  std::set<std::string> dispensable;  // Inputs that are missing alone without harm.
  for (const Line& line : table) {
    if (line.missing != "all" && line.outcome == "0 none") {
      dispensable.insert(line.words + " " + line.missing);
    }
  }
  size_t runs = 0;
  for (const Line& line : table) {
    const std::vector<std::string> words = Words(line.words);
    if (!rows.contains(words[0])) continue;  // The engine at hand lacks a codec.
    ++runs;
    const std::map<std::string, json> inputs = InputsOf(rows.at(words[0]), words);
    const json report = RunLine(line, inputs);
    if (report["cause"] == "not_runnable") continue;  // The engine at hand lacks a codec.
    // What the guards say of a recording depends on the devices of the machine.
    const std::string cause =
        report["cause"] == "guard_warning" ? "none" : report["cause"].get<std::string>();
    EXPECT_EQ(std::to_string(report["exit_code"].get<int>()) + " " + cause, line.outcome)
        << line.words << " without " << line.missing << ": " << report["reason"];
    for (const json& input : report["inputs"]) {
      const std::string name = input["name"];
      // Where another input keeps the routine from being run, it has not missed an optional one.
      const bool ran = !report["elapsed"]["value"].is_null();
      if (!ran && inputs.contains(name) && inputs.at(name)["optional"]) continue;
      const bool absent = line.missing == "all" || line.missing == name;
      // A list that nothing in the bench writes: its tables stay empty without it.
      const bool foreign = line.words == "TestNoizeus" && name.ends_with("_mcra2.pcm");
      const bool missed = absent && !foreign && !dispensable.contains(line.words + " " + name);
      EXPECT_EQ(input["problems"] == json({"missing_input"}), missed) << line.words << ", " << name;
    }
  }
  EXPECT_GT(runs, table.size() / 2);
}

TEST_F(AbsenceTest, HasALineForEachInputOfEachRow) {
  std::set<std::string> lines;
  for (const Line& line : Table()) lines.insert(Words(line.words)[0] + " " + line.missing);
  std::map<std::string, std::string> wordsOf;
  for (const Line& line : Table()) wordsOf[Words(line.words)[0]] = line.words;
  for (const auto& [routine, row] : Rows()) {
    EXPECT_TRUE(lines.contains(routine + " all")) << routine;
    const auto inputs = InputsOf(row, Words(wordsOf[routine]));
    if (inputs.size() < 2) continue;
    for (const auto& [name, input] : inputs) {
      EXPECT_TRUE(lines.contains(routine + " " + name)) << routine << " " << name;
    }
  }
}

}  // namespace
