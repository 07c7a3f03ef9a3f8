#include "synthetic_results.h"

#include <gtest/gtest.h>

#include "compare/read_results.h"

using host::Json;

Json FigureJson(const SyntheticFigure& figure) {
  return {{"file", figure.file ? Json(*figure.file) : Json()},
          {"channel", figure.channel ? Json(*figure.channel) : Json()},
          {"name", figure.name},
          {"value", figure.value ? Json(*figure.value) : Json()},
          {"unit", figure.unit},
          {"better", figure.better},
          {"reason", figure.value ? Json() : Json("too short")},
          {"version", figure.version},
          {"untrusted", false}};
}

Json CaseJson(const std::string& id, const std::vector<SyntheticFigure>& figures) {
  Json json = {{"id", id},
               {"index", 0},
               {"routine", "TestZUAec"},
               {"arguments", {"near.wav"}},
               {"group", "aec"},
               {"tags", Json::array()},
               {"known", Json()},
               {"cluster", Json()},
               {"verdict", "pass"},
               {"exit_code", 0},
               {"cause", "none"},
               {"reason", ""},
               {"report", "reports/" + id + ".json"},
               {"elapsed", 1.0},
               {"cpu", 0.5},
               {"rtf", 0.1},
               {"rtf_cpu", 0.05},
               {"results", Json::array()},
               {"guards", Json::array()},
               {"figures", Json::array()},
               {"outputs",
                {{{"name", "out.wav"},
                  {"path", "cases/" + id + "/out.wav"},
                  {"sha256", std::string(64, '0')}}}}};
  for (const SyntheticFigure& figure : figures) json["figures"].push_back(FigureJson(figure));
  return json;
}

Json ResultsJson(const std::vector<Json>& cases) {
  return {{"schema_version", 1},
          {"bench", {{"version", "1"}, {"commit", {{"value", "abc"}}}}},
          {"engine", {{"name", "desktop engine"}, {"version", {{"value", "0.2.0"}}}}},
          {"host", {{"cpu", {{"value", "x"}}}, {"processors", {{"value", 1}, {"unit", "1"}}}}},
          {"started", "2026-03-01T12:00:00Z"},
          {"command", {"audio_bench", "suite"}},
          {"suite", "calls.toml"},
          {"shard", Json()},
          {"counts", Json::object()},
          {"cases", cases}};
}

host::ResultSet SetOf(const Json& results, const std::string& path) {
  return host::ParseResultSet(results.dump(), path);
}

Json OneFigureEach(const std::vector<double>& values, const SyntheticFigure& like) {
  std::vector<Json> cases;
  for (const double value : values) {
    SyntheticFigure figure = like;
    figure.value = value;
    cases.push_back(CaseJson("c" + std::to_string(cases.size()), {figure}));
  }
  return ResultsJson(cases);
}

host::MeasureComparison CompareValues(const std::vector<double>& a, const std::vector<double>& b,
                                      const SyntheticFigure& like,
                                      const host::CompareRules& rules) {
  const host::Comparison comparison = host::CompareResults(
      SetOf(OneFigureEach(a, like), "A"), SetOf(OneFigureEach(b, like), "B"), rules);
  EXPECT_EQ(comparison.measures.size(), 1U);
  return comparison.measures.front();
}
