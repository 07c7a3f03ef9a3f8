#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "report/report.h"
#include "report/verdict.h"

namespace host {

// The verdicts, each from what is known at its point. Never a pass on nothing.

// Before the run: error for an input that is missing or unreadable, fail for one that does not hold
// one block.
Judgement JudgeInputs(std::span<const FilePlace> inputs);

// After the run: how it ended.
Judgement JudgeOutcome(const ChildOutcome& outcome, double timeout);

// After a run that returned: each output, and what is wrong with it (see OutputBefore; empty when
// nothing is).
Judgement JudgeOutputs(std::span<const FileReport> outputs, std::span<const std::string> problems);

}  // namespace host
