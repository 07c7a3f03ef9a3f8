#include "cli/controls_words.h"

#include <CLI/CLI.hpp>

#include "controls/controls.h"

namespace host {

void AddControls(CLI::App& app, ControlOptions& options) {
  CLI::App& controls = *app.add_subcommand(
      "controls", "Which guards and measures find engines with one known fault each");
  controls.footer(
      "Without a fault: all of them, and the clean engine again.\n"
      "Exit codes: 0 every fault is found and the clean engine by nothing, 1 else.");
  controls.add_option("FAULTS", options.faults, "Only these")->type_name("");
  controls.add_option("--engines", options.engines, "The folder of the engines libFAULT.so")
      ->type_name("DIR");
  controls.add_option("--json", options.json, "Also write the findings to this file; - is stdout")
      ->type_name("FILE");
}

}  // namespace host
