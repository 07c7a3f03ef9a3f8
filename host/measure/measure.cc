#include "measure/measure.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

#include "audio_measures/measure.h"
#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "measure/figure_forms.h"
#include "measure/scorer_tables.h"
#include "process/limits.h"
#include "process/signals.h"
#include "report/output.h"
#include "report/result_file.h"

namespace host {

namespace {

constexpr double kPatience = 600;  // Seconds for the reader of a pipe.

// A form that was asked for, and where it goes.
class Form {
 public:
  using Make = std::string (*)(std::span<const MeasuredFile>);

  Form(const std::string& path, Make make) : m_make(make) {
    if (!path.empty()) m_file.emplace(path, Now() + kPatience);
  }

  int Write(std::span<const MeasuredFile> files, Limits& limits) {
    return m_file ? m_file->Write(m_make(files), limits) : exit_code::kPass;
  }

 private:
  Make m_make;
  std::optional<ResultFile> m_file;
};

// The user's scorers, where any are asked for: nobody else needs to have his file in order.
Scorers WantedScorers(const MeasureOptions& options) {
  const bool all = std::ranges::all_of(options.measures, [](const std::string& name) {
    return audio_measures::FindMeasure(name) != nullptr;
  });
  return all && !options.list ? Scorers() : UserScorers();
}

void CheckWords(const MeasureOptions& options, const Scorers& scorers) {
  for (const std::string& name : options.measures) CheckMeasureName(name, scorers);
  if (options.files.empty()) {
    throw UsageError{"measure takes files (audio_bench measure --help)"};
  }
  if (options.json == "-" && options.csv == "-") {
    throw UsageError{"only one of --json and --csv can go to standard output"};
  }
}

}  // namespace

int MeasureFiles(const MeasureOptions& options) {
  const Scorers scorers = WantedScorers(options);
  if (options.list) return PrintResults(MeasureList(scorers));
  CheckWords(options, scorers);
  Form json(options.json, JsonFigures);
  Form csv(options.csv, CsvFigures);
  MeasuredAgainst against = options.against;
  for (MeasuredSource* const each :
       {&against.reference, &against.far, &against.near, &against.input}) {
    each->raw = options.raw;
  }
  const std::vector<std::string> names =
      options.measures.empty() ? FittingMeasures(against) : options.measures;
  std::vector<MeasuredFile> files;
  int exitCode = exit_code::kPass;
  for (const std::string& path : options.files) {
    files.push_back(
        MeasureFile({path, options.raw}, against, {names, scorers}, [] { return true; }));
    if (files.back().unreadable.empty()) continue;
    fprintf(stderr, "audio_bench: %s\n", Printable(files.back().unreadable).c_str());
    exitCode = exit_code::kInput;
  }
  const int printed = PrintResults(TextFigures(files));
  const HostSignals signals;
  Limits limits(signals, kPatience);
  for (const int written : {printed, json.Write(files, limits), csv.Write(files, limits)}) {
    if (written != exit_code::kPass) return written;
  }
  return exitCode;
}

}  // namespace host
