#pragma once

#include <functional>
#include <optional>
#include <string>

#include "process/limits.h"
#include "report/report.h"

namespace host {

// What limits that were reached make of a run, whose time was `seconds`: "interrupted (Interrupt)
// while measuring its files".
Problem Stopped(const Limits& limits, double seconds, const std::string& during);

// Ends a run before its routine has been started.
struct Ended {
  Problem problem;
};

// Throws Ended when the limits are reached.
void EndAtLimits(Limits& limits, double seconds, const std::string& during);

// The stop of a run that cannot be done as asked.
Stop Refuse(const UsageError& error);

// Does a part of a step, unless the run has been stopped before. What the part throws stops it.
void StopWhereFailing(std::optional<Stop>& stop, const std::function<void()>& part);

}  // namespace host
