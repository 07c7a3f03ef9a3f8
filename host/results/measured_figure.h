#pragma once

#include <optional>
#include <string>

namespace host {

// A figure of one output, as reports have it.
struct MeasuredFigure {
  std::string file = {};             // The output.
  std::optional<int> channel = {};   // From 0; none for the whole file.
  std::string name = {};             // "si_sdr"
  std::optional<double> value = {};  // Always finite.
  std::string unit = {};             // Empty for a bare number.
  std::string better = {};           // "higher", "lower", "none"
  std::string reason = {};           // Why there is no value; empty where there is one.
  int version = 0;                   // Of the measure; 0 for an external one.
  bool untrusted = true;             // The measure has not passed its self-test.
  std::optional<double> truth = {};  // What it should be, where that is known.
};

}  // namespace host
