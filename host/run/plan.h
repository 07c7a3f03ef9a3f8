#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/rows.h"
#include "engines/engine.h"
#include "files/beneath.h"
#include "files/workspace.h"
#include "report/report.h"
#include "run/case.h"
#include "run/named_files.h"

namespace host {

// Seconds that a run may take when neither its case nor its row says.
inline constexpr double kMaxSeconds = 600;

using ArgumentList = std::vector<std::string_view>;

// The first step of a run: what follows from the case alone.
struct Plan {
  Case what;
  std::string started;  // When, UTC: "2026-03-01T12:00:00Z".
  Engine engine = {};
  const CatalogueRow* row = nullptr;   // Null only where there is no such routine.
  double timeout = kMaxSeconds;        // Infinite for none.
  std::vector<FilePlace> inputs = {};  // Those that the row declares.
  std::vector<FilePlace> outputs = {};
  NamedFiles sources = {};     // Recordings for the inputs, by their index,
  NamedFiles takers = {};      // and where the outputs go.
  std::string fruitless = {};  // Why nothing comes out of these arguments; empty when it does.
  std::optional<Stop> stop = {};

  // The arguments, which are those of the case.
  ArgumentList Words() const;

  // Whether the SHA-256 of its files is asked for.
  bool WantsDigests() const { return !what.json.empty() || what.digests; }

  WorkFile Log() const { return {what.work, "logs/" + what.routine + ".log"}; }
};

// Reads and writes nothing. Completes the arguments. A routine that cannot be run by itself,
// arguments that do not fit it, and files that would be written and used at the same time stop the
// run.
Plan MakePlan(const Case& what);

// What the report says before the step that follows the plan.
RunReport ReportOf(const Plan& plan);

}  // namespace host
