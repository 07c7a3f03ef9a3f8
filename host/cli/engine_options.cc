#include "cli/engine_options.h"

#include <CLI/CLI.hpp>

namespace host {

void AddEngine(CLI::App& command, std::string& engine) {
  command
      .add_option(
          "--engine", engine,
          "An engine library, for what it has of the engine's interface; \"desktop\" is the "
          "built-in one")
      ->type_name("LIB.so");
}

void AddEngineOnly(CLI::App& command, bool& only) {
  command
      .add_flag("--engine-only", only,
                "Skip what the library lacks a facility for, instead of falling back")
      ->needs("--engine");
}

}  // namespace host
