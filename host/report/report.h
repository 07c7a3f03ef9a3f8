#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/paint.h"
#include "base/usage_error.h"
#include "engines/engine.h"
#include "files/audio_figures.h"
#include "files/audio_layout.h"
#include "files/wave_copy.h"
#include "files/workspace.h"
#include "guards/guards.h"
#include "process/child.h"
#include "recording/staged_record.h"
#include "report/verdict.h"
#include "results/measured_figure.h"
#include "results/result.h"

namespace host {

// All that is known after a run, and how it is told.

// What is known of an input before the run, of which the run shows what comes of it.
struct Concern {
  enum class Kind {
    kAborts,    // The routine ends its process.
    kNoOutput,  // It returns without an output.
    kHeader     // An output begins with a header that is none.
  };
  Kind kind;
  std::string text;  // As a problem has it.
};

// What became of a file of the user's to which an output was to be written.
struct HandedOver {
  size_t output = 0;  // Its index.
  std::string path = {};
  std::string text = {};  // "written as 24 bits", "is from before this run"
  bool done = false;
};

// Recordings that belong with an output, as the host opens them; empty for those that there are
// not.
struct MeasuredPaths {
  std::string reference = {};  // What it should be,
  std::string input = {};      // what it was made from,
  std::string far = {};        // what the loudspeaker played,
  std::string near = {};       // and what was said, without echo.
};

// A declared file; only the place and its problems when it was not looked at.
struct FileReport {
  FilePlace place;
  std::vector<Problem> problems = {};  // What keeps the run from passing because of it.
  std::vector<Concern> concerns = {};
  bool absent = false;                        // An input that was not there before the run.
  OutputState state = OutputState::kWritten;  // Outputs only.
  std::optional<uint64_t> bytes = {};
  std::optional<AudioLayout> audio = {};
  std::optional<std::vector<ChannelFigures>> channels = {};
  std::optional<WaveCopy> copy = {};
  std::string unreadable = {};  // Why it could not be read; empty when it could.
  std::string unmeasured = {};  // Why there are no figures of its channels, where there might be.
  bool givenUp =
      false;  // The limits of the run ended the look at it, which is no fault of the file.
  bool changed = false;               // An input during the run, an output while it was looked at.
  std::vector<GuardHit> guards = {};  // That it hits.
  uint64_t bytesBefore = 0;           // What an output held before the run.
  bool figures = true;                // Whether those of its channels were asked for.
  // SHA-256: of an input before the run, of an output after it.
  std::string digest = {};
  std::string undigested = "not looked at";  // Why there is none.
  std::optional<StagedFile> staged = {};     // An input that is what was put in its place.
  // The paths of the recordings that an output is measured against; empty for none.
  MeasuredPaths against = {};
  std::string uncompared = {};  // Why one that was named for it could not be read; else empty.
};

// Why a run goes no further, where that is known before its routine has been started.
struct Stop {
  Problem problem;
  // Where the run cannot be done as asked: for stderr, and what becomes of the report.
  std::optional<UsageError> refusal = {};
};

struct RunReport {
  std::string started = {};    // When, UTC: "2026-03-01T12:00:00Z".
  std::string workspace = {};  // Empty, like the routine, when the command line was refused.
  double timeout = 0;          // Seconds; 0 when the command line was refused.
  std::string routine = {};
  std::vector<std::string> arguments = {};
  std::string directory = {};             // In which audio_bench was called.
  std::vector<std::string> command = {};  // That runs it again there; empty when it was refused.
  Engine engine = {};
  Judgement judgement = {};
  std::optional<ChildOutcome> outcome = {};  // Nothing when the routine was not run.
  std::string log = {};                      // Its path; empty when the routine was not run.
  std::vector<StagedFile> staged = {};       // What was put into the workspace for the run.
  std::vector<FileReport> inputs = {};
  std::vector<FileReport> outputs = {};
  std::vector<HandedOver> handedOver = {};
  std::string kept = {};       // The temporary workspace, where it is kept; else empty.
  bool strict = false;         // Whether a warning is a failure.
  std::string fruitless = {};  // Why nothing comes out of these arguments; empty when it does.
  // What ended the look at the files before all were measured; nothing when nothing did.
  std::optional<Problem> lookEnded = {};
  std::optional<Stop> stop = {};
  std::vector<GuardHit> guards = {};         // That the run as a whole hits.
  std::vector<MeasuredFigure> figures = {};  // Those that a report was asked for.
  std::vector<Result> results = {};          // Empty when the routine was not run.
};

// Processing time / audio time, which is that of the longest input; for a run over lists of files,
// that of all inputs together. Nothing without audio to compare with, or when the routine did not
// return.
std::optional<double> RealTimeFactor(const RunReport& report);

// For readers: the verdict in the first line, then a few lines for each file or list of files.
std::string TextReport(const RunReport& report, const Paint& paint = {});

// For programs: JSON; every figure has a unit, and a reason where it has no value.
std::string JsonReport(const RunReport& report);

}  // namespace host
