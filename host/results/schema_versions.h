#pragma once

namespace host {

// Of what programs read. In a later version the same words may mean something else.
constexpr int kResultsSchema = 1;  // results.json of a suite.
constexpr int kReportSchema = 3;   // The report of a run.

}  // namespace host
