#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "selftest/control.h"

namespace host {

// What became of one measure in one control.
struct Outcome {
  const Control* control = nullptr;
  Expected expected = {};
  // The figure that is farthest from what is expected.
  std::optional<double> value = {};
  std::string reason = {};
  bool holds = false;
  double deviation = 0;  // Over the tolerance; 0 where a reason is expected.
};

// The controls of these measures, in the order of the controls.
std::vector<Outcome> RunControls(std::span<const std::string_view> measures);

// The same of other controls, which stay as long as what is returned.
std::vector<Outcome> RunControls(std::span<const Control> controls,
                                 std::span<const std::string_view> measures);

bool HasControls(std::string_view measure);

// Whether there are outcomes of this measure and all of them hold.
bool AllHold(std::span<const Outcome> outcomes, std::string_view measure);

}  // namespace host
