#pragma once

#include <string>

#include "cli/staging_options.h"
#include "replay/replay.h"
#include "run/case.h"

namespace CLI {
class App;
}

namespace host {

// Declares --work of a command.
void AddWork(CLI::App& command, std::string& work);

// The words after `run`, `stage` and `replay` but for the routine and its arguments.
class RunWords {
 public:
  // Declares the commands.
  RunWords(CLI::App& app, Case& run, ReplayOptions& replay);

  // Fill in what the options do not set by themselves.
  void TakeRun();
  void TakeStage();

 private:
  void AddRun(CLI::App& app);
  void AddStage(CLI::App& app);

  Case& m_case;
  CLI::App* m_run = nullptr;
  StagingOptions m_staging;
  StagingOptions m_stagingAlone;
};

}  // namespace host
