#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "compare/comparison.h"
#include "controls/control_faults.h"

namespace host {

// By what an engine was found on one kind of sound.
struct ControlFindings {
  std::string_view sound;
  std::vector<std::string> guards = {};          // That the clean run does not have, by name.
  std::vector<MeasureComparison> measures = {};  // That are worse than in the clean run.
  std::vector<std::string> compared = {};        // All measures that both runs have.

  bool Found() const { return !guards.empty() || !measures.empty(); }
};

struct ControlResult {
  const ControlFault* fault;
  std::vector<ControlFindings> sounds = {};

  // Whether a fault was found everywhere, or a clean engine nowhere.
  bool Right() const;
};

bool AllRight(const std::vector<ControlResult>& results);

// The measures that were compared and have found nothing, by name.
std::vector<std::string> Idle(const std::vector<ControlResult>& results);

// For readers: what found each fault, and the matrix of both.
std::string ControlsText(const std::vector<ControlResult>& results);

// For programs; controls.schema.json describes it.
std::string ControlsJson(const std::vector<ControlResult>& results);

}  // namespace host
