#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/paint.h"
#include "measure/scorer.h"
#include "recording/stage.h"
#include "results/truth.h"

namespace host {

// Outputs, as routines name them, each with the path of a recording.
using NamedSources = std::vector<std::pair<std::string, std::string>>;

// One routine to run, and all that decides about its run.
struct Case {
  std::string routine = "RunTestCase";
  std::vector<std::string> arguments = {};
  std::string work = "bench_work";
  // Seconds; when not given, that of the routine: ten when it never returns, ten minutes else.
  std::optional<double> timeout = {};
  // Seconds that what the routine started may run on; when not given, as its row says.
  std::optional<double> linger = {};
  std::string engine = {};  // See FindEngine.
  bool engineOnly = false;  // A routine that asks for what its library lacks is not run.
  std::string json = {};    // Where the report goes as JSON; empty for nowhere.
  bool wait = false;        // For the end of another run in the workspace.
  bool wav = false;         // Also write WAVE copies of headerless audio outputs.
  bool strict = false;      // A warning is a failure.
  bool figures = false;     // Also measure the files of lists.
  bool digests = false;     // Hash its files; with a report they always are.
  bool debug = false;       // In this process, without limits.
  // Recordings to put in the place of inputs, and where outputs go: "FILE" or "NAME=FILE".
  std::vector<std::string> in = {};
  std::vector<std::string> out = {};
  StageWishes wishes = {};
  // Of a report: names of measures; empty for those that fit.
  std::vector<std::string> measures = {};
  Scorers scorers = {};  // Those of them that are no measures of the bench.
  // What outputs are measured against.
  NamedSources reference = {};
  NamedSources far = {};
  NamedSources near = {};
  Truths truths = {};          // What figures and results should be.
  bool demo = false;           // On recordings of the demo, with what is true of them beside them.
  Color color = Color::kAuto;  // Of the verdict.
  bool temporary = false;      // `work` is a folder that the run makes, and removes if it may.
};

}  // namespace host
