#pragma once

#include <span>
#include <string>

#include "catalogue/list.h"
#include "run/run.h"

namespace host {

// What audio_bench is asked to do.
struct Request {
  enum class Command { kPrint, kList, kDescribe, kRun, kDemo };
  enum class Form { kText, kJson, kMarkdown };

  Command command = Command::kPrint;
  std::string text;         // kPrint: help or the version.
  RunOptions run;           // kRun; of it kDemo uses the workspace.
  ListFilter filter;        // kList
  Form form = Form::kText;  // kList
  std::string routine;      // kDescribe
};

// The request in the words of a command line, the program's name left out. Throws UsageError.
Request ParseRequest(std::span<const std::string> words);

// Where a command line that cannot be parsed asks for the report of a run; empty for nowhere.
std::string ReportPath(std::span<const std::string> words);

}  // namespace host
