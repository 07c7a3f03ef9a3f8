#pragma once

#include <string>

#include "process/limits.h"
#include "report/verdict.h"

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

}  // namespace host
