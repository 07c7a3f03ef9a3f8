#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"
#include "compare/compare_results.h"
#include "compare/result_set.h"

// Results of suites that no suite has run.

struct SyntheticFigure {
  std::string name = "my_sdr";
  std::optional<double> value = {};
  std::string better = "higher";
  std::string unit = "dB";
  std::optional<std::string> file = "out.wav";
  std::optional<int> channel = {};
  int version = 1;
};

host::Json FigureJson(const SyntheticFigure& figure);

// A case that passes, with one output whose hash is that of nothing.
host::Json CaseJson(const std::string& id, const std::vector<SyntheticFigure>& figures);

// As results.json has it.
host::Json ResultsJson(const std::vector<host::Json>& cases);

host::ResultSet SetOf(const host::Json& results, const std::string& path = "results.json");

// Cases "c0", "c1", ... with one figure each.
host::Json OneFigureEach(const std::vector<double>& values, const SyntheticFigure& like = {});

// The comparison of the only measure when the figures of cases are these.
host::MeasureComparison CompareValues(const std::vector<double>& a, const std::vector<double>& b,
                                      const SyntheticFigure& like = {},
                                      const host::CompareRules& rules = {});
