#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/usage_error.h"
#include "catalogue/list.h"
#include "compare/baseline.h"
#include "compare/compare.h"
#include "controls/controls.h"
#include "measure/measure.h"
#include "replay/replay.h"
#include "report_page/report_page.h"
#include "run/case.h"
#include "suite/suite.h"

namespace host {

// What audio_bench is asked to do.
struct Request {
  enum class Command {
    kPrint,
    kList,
    kDescribe,
    kRun,
    kStage,
    kSuite,
    kMerge,
    kReplay,
    kMeasure,
    kCompare,
    kBaseline,
    kSelftest,
    kControls,
    kReportPage,
    kOpen,
    kDemo,
    kDemoAll
  };
  enum class Form { kText, kJson, kMarkdown };

  Command command = Command::kPrint;
  std::string text;                // kPrint: help or the version.
  Case run;                        // kRun, kStage; of it kDemo uses the workspace.
  ListFilter filter;               // kList
  Form form = Form::kText;         // kList, kDescribe, kSelftest
  Color color = Color::kAuto;      // kList
  std::string routine;             // kDescribe
  std::vector<std::string> words;  // kDescribe: its arguments, or none.
  SuiteOptions suite;              // kSuite
  MergeOptions merge;              // kMerge
  ReplayOptions replay;            // kReplay
  MeasureOptions measure;          // kMeasure
  CompareOptions compare;          // kCompare
  BaselineOptions baseline;        // kBaseline
  ControlOptions controls;         // kControls
  ReportPageOptions page;          // kReportPage
  std::string opened;              // kOpen
};

// Why the words of a command line ask for nothing that can be done.
struct RefusedRequest : UsageError {
  std::vector<std::string> reports;  // Where they ask for the report of a run.
};

// The request in the words of a command line, the program's name left out. Throws UsageError; a
// RefusedRequest where the words ask for a run.
Request ParseRequest(std::span<const std::string> words);

}  // namespace host
