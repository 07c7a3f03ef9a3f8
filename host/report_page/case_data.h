#pragma once

#include <string>
#include <vector>

#include "base/json_parts.h"
#include "report_page/case_report.h"
#include "report_page/page_run.h"
#include "report_page/player.h"

namespace host {

// What the page has of a case, but for its players.
Json CaseData(const PageCase& one, const CaseReport& report);

// Whether the other run does not hit a guard, which is one of the record's.
bool IsNewGuard(const PageCase& one, const Json& guard);

// The audio outputs of a case, each beside what belongs with it; those that hit a guard first.
std::vector<PlayedOutput> PlayedOutputs(const PageRun& run, const PageCase& one,
                                        const CaseReport& report);

}  // namespace host
