#include "cli/cli.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <span>
#include <vector>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "catalogue/list.h"
#include "cli/request.h"
#include "compare/baseline.h"
#include "compare/compare.h"
#include "controls/controls.h"
#include "demo/demo.h"
#include "demo/demo_all.h"
#include "engines/engine_text.h"
#include "measure/measure.h"
#include "replay/replay.h"
#include "report/output.h"
#include "report_page/open_page.h"
#include "report_page/report_page.h"
#include "run/deliver.h"
#include "run/run.h"
#include "run/stage_command.h"
#include "selftest/selftest.h"
#include "suite/suite.h"

namespace host {

namespace {

// The columns of the terminal, SIZE_MAX when stdout is none.
size_t OutputWidth() {
  if (isatty(STDOUT_FILENO) == 0) return SIZE_MAX;
  winsize size = {};
  const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? std::clamp<size_t>(size.ws_col, 70, 120) : 100;
}

// The engine whose library answers alone; null where it does not.
const Engine* Only(const Request& request) {
  return request.run.engineOnly ? &FindEngine(request.run.engine) : nullptr;
}

std::string List(const Request& request) {
  ListFilter filter = request.filter;
  filter.only = Only(request);
  switch (request.form) {
    case Request::Form::kJson:
      return ListAsJson(filter, FindEngine(request.run.engine));
    case Request::Form::kMarkdown:
      return ListAsMarkdown(filter);
    case Request::Form::kText:
      break;
  }
  return ListAsText(filter, OutputWidth(), Paint(request.color, STDOUT_FILENO)) +
         EngineText(FindEngine(request.run.engine), OutputWidth());
}

std::string Description(const Request& request) {
  if (request.form == Request::Form::kJson) {
    return DescribeAsJson(request.routine, request.words, Only(request));
  }
  const std::string& engine = request.run.engine;
  return Describe(request.routine, request.words, Only(request)) +
         (engine.empty() ? "" : EngineText(FindEngine(engine), OutputWidth()));
}

// With the recordings of the demo for the routines of the catalogue; with a page at the end where
// that is asked for.
int RunSuiteOnDemo(SuiteOptions options) {
  options.demo = {DemoWords, RenderDemosOf, PlaceDemosOf};
  if (options.report) {
    const int there = CheckReportPage();
    if (there != exit_code::kPass) return there;
    options.ended = [](const std::string& folder) {
      return WriteReportPage({.path = folder, .out = PageOfSuite(folder)});
    };
  }
  return RunSuite(options);
}

int Execute(const Request& request) {
  switch (request.command) {
    case Request::Command::kPrint:
      return PrintResults(request.text);
    case Request::Command::kList:
      return PrintResults(List(request));
    case Request::Command::kDescribe:
      return PrintResults(Description(request));
    case Request::Command::kDemo:
      return PrintResults(PlaceDemo(request.run.work));
    case Request::Command::kDemoAll:
      return PrintResults(PlaceAllDemos(request.run.work));
    case Request::Command::kStage:
      return StageOnly(request.run);
    case Request::Command::kSuite:
      return RunSuiteOnDemo(request.suite);
    case Request::Command::kMerge:
      return MergeSuites(request.merge);
    case Request::Command::kReplay:
      return Replay(request.replay,
                    [](std::span<const std::string> words) { return ParseRequest(words).run; });
    case Request::Command::kMeasure:
      return MeasureFiles(request.measure);
    case Request::Command::kCompare:
      return Compare(request.compare);
    case Request::Command::kSelftest:
      return Selftest(request.form == Request::Form::kJson);
    case Request::Command::kBaseline:
      return ManageBaselines(request.baseline);
    case Request::Command::kControls:
      return RunControls(request.controls);
    case Request::Command::kReportPage:
      return WriteReportPage(request.page);
    case Request::Command::kOpen:
      return OpenPage(request.opened);
    case Request::Command::kRun:
      break;
  }
  return Run(request.run);
}

// Parses the command line. Where that fails and the words ask for a report, writes one that says
// so, then throws the UsageError.
Request Parse(const std::vector<std::string>& words) {
  try {
    return ParseRequest(words);
  } catch (const RefusedRequest& error) {
    for (const std::string& path : error.reports) {
      try {
        ReportRefusal(path, error.message);
      } catch (const UsageError&) {  // The first error is reported.
      }
    }
    throw;
  }
}

void PrintProblem(const std::string& message) {
  fprintf(stderr, "audio_bench: %s\n", Printable(message).c_str());
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
  const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  try {
    return Execute(Parse(words));
  } catch (const UsageError& error) {
    PrintProblem(error.message);
  } catch (const std::exception& error) {
    PrintProblem(error.what());
  }
  return exit_code::kUsage;
}

}  // namespace host
