#include "measure/measure.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <utility>

#include "audio_measures/measure.h"
#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "measure/figure_forms.h"
#include "measure/plot_file.h"
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
  explicit Form(const std::string& path) {
    if (!path.empty()) m_file.emplace(path, Now() + kPatience);
  }

  int Write(const std::function<std::string()>& text, Limits& limits) {
    return m_file ? m_file->Write(text(), limits) : exit_code::kPass;
  }

 private:
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
  const int printed =
      (options.json == "-" ? 1 : 0) + (options.csv == "-" ? 1 : 0) + (options.plot == "-" ? 1 : 0);
  if (printed > 1) {
    throw UsageError{"only one of --json, --csv and --plot can go to standard output"};
  }
  if (!options.plot.empty() && options.files.size() > 1) {
    throw UsageError{"--plot draws one file, and there are " +
                     std::to_string(options.files.size())};
  }
}

}  // namespace

int MeasureFiles(const MeasureOptions& options) {
  const Scorers scorers = WantedScorers(options);
  if (options.list) return PrintResults(MeasureList(scorers));
  CheckWords(options, scorers);
  Form json(options.json);
  Form csv(options.csv);
  Form plot(options.plot);
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
  const int written[] = {printed, json.Write([&] { return JsonFigures(files); }, limits),
                         csv.Write([&] { return CsvFigures(files); }, limits)};
  for (const int each : written) {
    if (each != exit_code::kPass) return each;
  }
  if (exitCode != exit_code::kPass) return exitCode;  // There is nothing to be drawn.
  return plot.Write(
      [&] {
        return PlotFile({options.files.front(), options.raw}, against, options.measures);
      },
      limits);
}

}  // namespace host
