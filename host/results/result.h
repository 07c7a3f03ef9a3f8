#pragma once

#include <optional>
#include <string>

#include "catalogue/results.h"

namespace host {

using harness::Better;

// A figure that a run has found out.
struct Result {
  std::string name = {};  // "delay", "snr.car.5"
  std::optional<double> value = {};
  std::string unit = {};
  Better better = Better::kNone;
  std::string file = {};    // The output in which it stands, as the routine opens it; or empty.
  std::string reason = {};  // Why there is no value, or what is missing in it; empty for none.
  std::optional<double> truth = {};  // What it should be, where that is known.
};

// The name of the length of an audio output.
inline constexpr const char* kLength = "length";

// "higher", "lower" or "none"
const char* BetterName(Better better);

}  // namespace host
