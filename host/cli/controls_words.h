#pragma once

namespace CLI {
class App;
}

namespace host {

struct ControlOptions;

// Declares the words after `controls`.
void AddControls(CLI::App& app, ControlOptions& options);

}  // namespace host
